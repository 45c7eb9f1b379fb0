#include "Platform/Foundation/NotificationCenter.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Platform {

namespace {

struct Observer {
    const void* object;
    NotificationCenter::Callback callback;
    std::atomic<bool> ended = false;

    Observer(const void* observedObject, NotificationCenter::Callback called)
        : object(observedObject)
        , callback(std::move(called)) {}
};

using Observers = std::vector<std::shared_ptr<Observer>>;

} // namespace

struct NotificationCenter::State {
    std::mutex mutex;
    std::unordered_map<NotificationName, Observers> observers;

    void add(NotificationName name, std::shared_ptr<Observer> observer) {
        const std::scoped_lock lock(mutex);
        observers[name].push_back(std::move(observer));
    }

    void remove(NotificationName name, const std::shared_ptr<Observer>& observer) {
        const std::scoped_lock lock(mutex);
        const auto named = observers.find(name);
        if (named == observers.end()) {
            return;
        }
        std::erase(named->second, observer);
        if (named->second.empty()) {
            observers.erase(named);
        }
    }

    Observers interestedIn(NotificationName name, const void* object) {
        const std::scoped_lock lock(mutex);
        Observers interested;
        if (const auto named = observers.find(name); named != observers.end()) {
            std::ranges::copy_if(named->second, std::back_inserter(interested), [&](const auto& observer) {
                return observer->object == nullptr || observer->object == object;
            });
        }
        return interested;
    }
};

NotificationCenter::NotificationCenter()
    : state_(std::make_shared<State>()) {}

NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

Observation NotificationCenter::addObserver(NotificationName name, const void* object, Callback callback) {
    auto observer = std::make_shared<Observer>(object, std::move(callback));
    state_->add(name, observer);
    // The token owns the observer too, so that what the callback holds is released outside the lock: its
    // destructor may end further observations.
    return Observation([weakState = std::weak_ptr(state_), name, observer = std::move(observer)] {
        observer->ended = true;
        if (const auto state = weakState.lock()) {
            state->remove(name, observer);
        }
    });
}

void NotificationCenter::post(NotificationName name, const void* object) {
    // The list of those to call is a copy that keeps each observer alive while it runs, even if it ends
    // itself.
    const Notification notification = {.name = name, .object = object};
    for (const auto& observer : state_->interestedIn(name, object)) {
        if (!observer->ended) {
            observer->callback(notification);
        }
    }
}

} // namespace Platform
