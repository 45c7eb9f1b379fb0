#pragma once

#include "Platform/Foundation/Observation.h"

#include <functional>
#include <memory>
#include <string_view>

namespace Platform {

/// What a notification is called: a reverse-DNS text, compared exactly. Names are constants of the program.
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
    /// Whom the notification is about: an identity to compare with, never to be followed.
    const void* object = nullptr;
};

/// Tells whoever observes a name that it happened.
///
/// Callbacks run on the posting thread before `post` returns, in an order that nobody may count on. Any
/// thread may register, end and post; an observation that ends on another thread than the one posting may
/// still be running.
class NotificationCenter {
public:
    using Callback = std::function<void(const Notification&)>;

    NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;
    ~NotificationCenter();

    /// The one centre of the process.
    static NotificationCenter& defaultCenter();

    /// Calls `callback` for every post of `name` about `object`, or about anything if `object` is null, until
    /// the token ends. The token may outlive the centre.
    Observation addObserver(NotificationName name, const void* object, Callback callback);

    /// Calls the observers that were registered when the post began and have not ended until their turn
    /// comes. Callbacks may register and end observations, their own included, and post again.
    void post(NotificationName name, const void* object);

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace Platform

template <>
struct std::hash<Platform::NotificationName> {
    std::size_t operator()(Platform::NotificationName name) const noexcept {
        return std::hash<std::string_view>()(name.rawValue());
    }
};
