#pragma once

#include "Platform/Foundation/ObserverList.h"

#include <functional>
#include <string_view>

namespace Platform {

/// The name of a notification: a reverse-DNS string, compared exactly. Names are compile-time constants.
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
    /// Identifies the sender. The pointer is only compared, never dereferenced.
    const void* object = nullptr;
};

/// Delivers notifications to the observers that are registered for their names.
///
/// Callbacks run on the thread that calls `post`, before `post` returns. Thread-safe. If an observation is
/// ended on one thread during a call to `post` on another, its callback may still be running afterwards.
class NotificationCenter {
public:
    using Callback = std::function<void(const Notification&)>;

    /// The shared notification center of the process.
    static NotificationCenter& defaultCenter();

    /// Calls `callback` for each notification `name` from `object`, or from any sender if `object` is null.
    Observation addObserver(NotificationName name, const void* object, Callback callback);

    /// Calls the observers currently registered for the notification, except those removed before their turn.
    /// Callbacks may add observers, end observations (including their own), and post recursively.
    void post(NotificationName name, const void* object);

private:
    ObserverList<Notification> observers_;
};

} // namespace Platform
