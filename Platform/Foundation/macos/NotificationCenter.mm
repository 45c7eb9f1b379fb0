#include "Platform/Foundation/NotificationCenter.h"

#include "Platform/Foundation/macos/Conversions.h"

#include <atomic>
#include <memory>
#include <utility>

namespace Platform {

namespace {

struct Observer {
    NotificationName name;
    const void* object;
    NotificationCenter::Callback callback;
    std::atomic<bool> ended = false;

    Observer(NotificationName observedName, const void* observedObject, NotificationCenter::Callback called)
        : name(observedName)
        , object(observedObject)
        , callback(std::move(called)) {}

    /// Must not throw: Foundation's own frames lie between the post and this.
    void receive(const void* postedObject) const noexcept {
        if (!ended && (object == nullptr || object == postedObject)) {
            callback({.name = name, .object = postedObject});
        }
    }
};

} // namespace

/// Our objects are none of Foundation's: a notification's object is a value that holds the address, and each
/// observer compares it itself.
struct NotificationCenter::State {
    NSNotificationCenter* center = [[NSNotificationCenter alloc] init];
};

NotificationCenter::NotificationCenter()
    : state_(std::make_shared<State>()) {}

NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
    static struct Default : NotificationCenter {
        Default() { state_->center = NSNotificationCenter.defaultCenter; }
    } center;
    return center;
}

Observation NotificationCenter::addObserver(NotificationName name, const void* object, Callback callback) {
    const auto observer = std::make_shared<Observer>(name, object, std::move(callback));
    // Foundation keeps the block for as long as it likes, the token what the block calls.
    const std::weak_ptr<Observer> weak = observer;
    NSNotificationCenter* const center = state_->center;
    const id token = [center addObserverForName:toNSString(name.rawValue())
                                         object:nil
                                          queue:nil
                                     usingBlock:^(NSNotification* notification) {
                                         // Kept alive while it runs, even if it ends itself.
                                         if (const std::shared_ptr<const Observer> running = weak.lock()) {
                                             NSValue* const address = notification.object;
                                             running->receive(address.pointerValue);
                                         }
                                     }];
    return Observation([center, token, observer] {
        observer->ended = true;
        [center removeObserver:token];
    });
}

void NotificationCenter::post(NotificationName name, const void* object) {
    [state_->center postNotificationName:toNSString(name.rawValue())
                                  object:object != nullptr ? [NSValue valueWithPointer:object] : nil];
}

} // namespace Platform
