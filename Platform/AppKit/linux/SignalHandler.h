#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

namespace Platform {

/// The C callback that calls a member function with the arguments of a signal. The object's `keepAlive`
/// returns what keeps it alive during the call, or nothing if it must not be called any more.
template <auto handler>
struct SignalHandler;

template <typename Object, typename Result, typename... Arguments, Result (Object::*handler)(Arguments...)>
struct SignalHandler<handler> {
    static Result call(Arguments... arguments, gpointer data) {
        auto& object = *static_cast<Object*>(data);
        const auto keptAlive = object.keepAlive();
        return keptAlive ? (object.*handler)(arguments...) : Result();
    }
};

/// Calls `handler` of `object` whenever `instance` emits the signal.
template <auto handler, typename Object>
SignalConnection connectSignal(gpointer instance, const char* signal, Object& object) {
    return {instance, signal, G_CALLBACK(&SignalHandler<handler>::call), &object};
}

} // namespace Platform
