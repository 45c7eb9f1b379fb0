#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <utility>

namespace Platform {

/// Holds one reference to a GObject.
///
/// `retain` adds a reference and sinks a floating one; `adopt` takes over the caller's reference.
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

/// Disconnects a signal handler when it is destroyed. The instance may be finalized earlier.
class SignalConnection {
public:
    SignalConnection() = default;
    SignalConnection(gpointer instance, const char* signal, GCallback callback, gpointer data)
        : handler_(std::make_unique<Handler>(instance, g_signal_connect(instance, signal, callback, data))
                       .release()) {
        g_object_add_weak_pointer(G_OBJECT(instance), &handler_->instance);
    }

    void disconnect() { handler_.reset(); }

private:
    struct Handler {
        gpointer instance; // null once it has been finalized
        gulong id;
    };
    struct Disconnect {
        void operator()(Handler* handler) const {
            const std::unique_ptr<Handler> owned(handler);
            if (handler->instance) {
                g_signal_handler_disconnect(handler->instance, handler->id);
                g_object_remove_weak_pointer(G_OBJECT(handler->instance), &handler->instance);
            }
        }
    };

    std::unique_ptr<Handler, Disconnect> handler_;
};

} // namespace Platform
