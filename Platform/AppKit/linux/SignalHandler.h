#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

namespace Platform {

/// A C callback that calls a member function with the arguments of a signal. During the call, it holds the
/// reference that the object's `keepAlive` returns or, if the object has no such function but is managed by a
/// `shared_ptr`, a reference to the object. If the reference is null, the member function is not called.
template <auto handler>
struct SignalHandler;

template <typename Object, typename Result, typename... Arguments, Result (Object::*handler)(Arguments...)>
struct SignalHandler<handler> {
    static Result call(Arguments... arguments, gpointer data) {
        auto& object = *static_cast<Object*>(data);
        if constexpr (requires { object.keepAlive(); }) {
            const auto keptAlive = object.keepAlive();
            return keptAlive ? (object.*handler)(arguments...) : Result();
        } else if constexpr (requires { object.weak_from_this(); }) {
            const auto keptAlive = object.weak_from_this().lock();
            return keptAlive ? (object.*handler)(arguments...) : Result();
        } else {
            return (object.*handler)(arguments...);
        }
    }
};

/// Connects a signal of `instance` to a member function of `object`, until the connection is destroyed.
template <auto handler, typename Object>
SignalConnection connectSignal(gpointer instance, const char* signal, Object& object) {
    return {instance, signal, G_CALLBACK(&SignalHandler<handler>::call), &object};
}

} // namespace Platform
