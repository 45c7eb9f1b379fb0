#pragma once

#include "Platform/Foundation/ObserverList.h"

#include <functional>
#include <string_view>

namespace Platform {

/// The name of a notification: a reverse-DNS text, compared exactly. Names are constants of the program.
class NotificationName {
public:
    explicit consteval NotificationName(std::string_view rawValue)
        : rawValue_(rawValue) {}

    constexpr std::string_view rawValue() const { return rawValue_; }

    friend bool operator==(const NotificationName&, const NotificationName&) = default;

private:
    std::string_view rawValue_;
};

struct Notification {
    NotificationName name;
    /// Identifies the sender. Only compared, never dereferenced.
    const void* object = nullptr;
};

/// Notifies the observers of a name.
///
/// Callbacks run on the posting thread before `post` returns. All functions may be called on any thread. If
/// an observation is ended on a thread other than the posting one, its callback may still be running
/// afterwards.
class NotificationCenter {
public:
    using Callback = std::function<void(const Notification&)>;

    /// The centre of the process.
    static NotificationCenter& defaultCenter();

    /// Calls `callback` for each post of `name` from `object`, or from any sender if `object` is null, until
    /// the token ends. The token may outlive the centre.
    Observation addObserver(NotificationName name, const void* object, Callback callback);

    /// Calls the observers registered by now, except those that end before their turn. Callbacks may register
    /// and end observations, their own included, and post again.
    void post(NotificationName name, const void* object);

private:
    ObserverList<Notification> observers_;
};

} // namespace Platform
