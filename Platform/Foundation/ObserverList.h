#pragma once

#include "Platform/Foundation/Observation.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Platform {

/// A list of callbacks, which are called in the order in which they were added.
///
/// Callbacks may add observations, end them (including their own), notify the list recursively, and destroy
/// the list. Thread-safe. If an observation is ended on one thread during a notification on another, its
/// callback may still be running afterwards.
template <typename... Arguments>
class ObserverList {
public:
    using Callback = std::function<void(Arguments...)>;

    ObserverList() = default;
    ObserverList(const ObserverList&) = delete;
    ObserverList& operator=(const ObserverList&) = delete;
    ~ObserverList() = default;

    /// Adds `callback`. Destroying or resetting the token removes it. The token may outlive the list.
    Observation add(Callback callback) {
        auto observer = std::make_shared<Observer>(std::move(callback));
        {
            const std::scoped_lock lock(state_->mutex);
            state_->observers.push_back(observer);
        }
        // The token also owns the observer, so that the callback is not destroyed while the lock is held.
        // Otherwise, a captured object that ends another observation would cause a deadlock.
        return Observation([weakState = std::weak_ptr(state_), observer = std::move(observer)] {
            observer->isEnded = true;
            if (const auto state = weakState.lock()) {
                const std::scoped_lock lock(state->mutex);
                std::erase(state->observers, observer);
            }
        });
    }

    /// Calls the current observers, except those that are removed before their turn.
    void notify(const Arguments&... arguments) const {
        for (const auto& observer : copy()) {
            if (!observer->isEnded) {
                observer->callback(arguments...);
            }
        }
    }

private:
    struct Observer {
        explicit Observer(Callback called)
            : callback(std::move(called)) {}

        const Callback callback;
        std::atomic<bool> isEnded = false;
    };

    using Observers = std::vector<std::shared_ptr<Observer>>;

    struct State {
        std::mutex mutex;
        Observers observers;
    };

    /// Copies the list, so that an observer stays alive even if its callback ends its own observation.
    Observers copy() const {
        const std::scoped_lock lock(state_->mutex);
        return state_->observers;
    }

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace Platform
