#pragma once

#include <gtk/gtk.h>

#include <utility>

namespace Platform {

/// Holds one reference to a GObject.
///
/// `retain` adds a reference and sinks a floating one; `adopt` takes over a reference that the caller owns.
/// The destructor releases the reference.
template <typename T>
class GObjectPtr {
public:
    GObjectPtr() = default;
    GObjectPtr(const GObjectPtr& other)
        : object_(other.object_) {
        if (object_) {
            g_object_ref(object_);
        }
    }
    GObjectPtr(GObjectPtr&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)) {}
    GObjectPtr& operator=(const GObjectPtr& other) {
        if (this != &other) {
            *this = GObjectPtr(other);
        }
        return *this;
    }
    GObjectPtr& operator=(GObjectPtr&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~GObjectPtr() {
        if (object_) {
            g_object_unref(object_);
        }
    }

    static GObjectPtr retain(T* object) {
        GObjectPtr pointer;
        pointer.object_ = object ? static_cast<T*>(g_object_ref_sink(object)) : nullptr;
        return pointer;
    }
    static GObjectPtr adopt(T* object) {
        GObjectPtr pointer;
        pointer.object_ = object;
        return pointer;
    }

    T* get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    void reset() { *this = GObjectPtr(); }

private:
    T* object_ = nullptr;
};

/// A signal connection that is disconnected when this object is destroyed. The instance may be finalized
/// earlier.
class SignalConnection {
public:
    SignalConnection() = default;
    SignalConnection(gpointer instance, const char* signal, GCallback callback, gpointer data)
        : instance_(G_OBJECT(instance))
        , handler_(g_signal_connect(instance, signal, callback, data)) {
        g_object_add_weak_pointer(instance_, weak());
    }
    SignalConnection(SignalConnection&& other) noexcept { *this = std::move(other); }
    SignalConnection& operator=(SignalConnection&& other) noexcept {
        if (this != &other) {
            disconnect();
            if (other.instance_) {
                instance_ = other.instance_;
                handler_ = other.handler_;
                g_object_remove_weak_pointer(other.instance_, other.weak());
                other.instance_ = nullptr;
                g_object_add_weak_pointer(instance_, weak());
            }
        }
        return *this;
    }
    SignalConnection(const SignalConnection&) = delete;
    SignalConnection& operator=(const SignalConnection&) = delete;
    ~SignalConnection() { disconnect(); }

    void disconnect() {
        if (!instance_) {
            return;
        }
        g_signal_handler_disconnect(instance_, handler_);
        g_object_remove_weak_pointer(instance_, weak());
        instance_ = nullptr;
    }

private:
    gpointer* weak() { return reinterpret_cast<gpointer*>(&instance_); }

    GObject* instance_ = nullptr;
    gulong handler_ = 0;
};

} // namespace Platform
