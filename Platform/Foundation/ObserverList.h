#pragma once

#include "Platform/Foundation/Observation.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Platform {

/// A list of callbacks, called in the order in which they were added.
///
/// Callbacks may add and end observations, their own included, notify again, and destroy the list. All
/// functions may be called on any thread. If an observation is ended on a thread other than the notifying
/// one, its callback may still be running afterwards.
template <typename... Arguments>
class ObserverList {
public:
    using Callback = std::function<void(Arguments...)>;

    ObserverList() = default;
    ObserverList(const ObserverList&) = delete;
    ObserverList& operator=(const ObserverList&) = delete;
    ~ObserverList() = default;

    /// Adds `callback` until the token ends. The token may outlive the list.
    Observation add(Callback callback) {
        auto observer = std::make_shared<Observer>(std::move(callback));
        {
            const std::scoped_lock lock(state_->mutex);
            state_->observers.push_back(observer);
        }
        // The token also owns the observer, so that the callback is not destroyed under the lock: objects
        // that it holds may end further observations.
        return Observation([weakState = std::weak_ptr(state_), observer = std::move(observer)] {
            observer->isEnded = true;
            if (const auto state = weakState.lock()) {
                const std::scoped_lock lock(state->mutex);
                std::erase(state->observers, observer);
            }
        });
    }

    /// Calls the observers added by now, except those that end before their turn.
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

    /// Keeps each observer alive while it runs, even if it ends itself.
    Observers copy() const {
        const std::scoped_lock lock(state_->mutex);
        return state_->observers;
    }

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace Platform
