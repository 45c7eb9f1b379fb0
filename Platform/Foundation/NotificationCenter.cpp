#include "Platform/Foundation/NotificationCenter.h"

#include <utility>

namespace Platform {

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

Observation NotificationCenter::addObserver(NotificationName name, const void* object, Callback callback) {
    return observers_.add([name, object, callback = std::move(callback)](const Notification& notification) {
        if (notification.name == name && (object == nullptr || object == notification.object)) {
            callback(notification);
        }
    });
}

void NotificationCenter::post(NotificationName name, const void* object) {
    observers_.notify({.name = name, .object = object});
}

} // namespace Platform
