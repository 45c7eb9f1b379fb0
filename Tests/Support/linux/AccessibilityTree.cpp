#include "Tests/Support/AccessibilityTree.h"

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gio/gio.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace TestSupport {

namespace {

using Variant = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;

constexpr const char* accessibleInterface = "org.a11y.atspi.Accessible";
constexpr const char* rootPath = "/org/a11y/atspi/accessible/root";

/// Bit numbers of the AT-SPI states.
enum State { focusable = 11, focused = 12, selected = 23, sensitive = 24 };

/// A connection to the accessibility bus. Calls block until the reply arrives, so do not use it on the main
/// thread.
class Bus {
public:
    Bus() {
        const auto session = connected(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, error_.place()));
        const auto answer = checked(g_dbus_connection_call_sync(
            session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr,
            G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, error_.place()));
        const char* address = nullptr;
        g_variant_get(answer.get(), "(&s)", &address);
        connection_ = connected(g_dbus_connection_new_for_address_sync(
            address,
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, error_.place()));
    }

    Variant call(const std::string& owner, const std::string& path, const char* interface, const char* method,
                 GVariant* arguments = nullptr) {
        return checked(g_dbus_connection_call_sync(connection_.get(), owner.c_str(), path.c_str(), interface,
                                                   method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
                                                   nullptr, error_.place()));
    }

private:
    class Error {
    public:
        Error() = default;
        Error(const Error&) = delete;
        Error& operator=(const Error&) = delete;
        ~Error() { g_clear_error(&error_); }

        GError** place() {
            g_clear_error(&error_);
            return &error_;
        }
        std::string text() const { return error_ == nullptr ? "no answer" : error_->message; }

    private:
        GError* error_ = nullptr;
    };

    Platform::GObjectPtr<GDBusConnection> connected(GDBusConnection* connection) const {
        if (connection == nullptr) {
            throw std::runtime_error(error_.text());
        }
        return Platform::GObjectPtr<GDBusConnection>::adopt(connection);
    }

    Variant checked(GVariant* answer) const {
        if (answer == nullptr) {
            throw std::runtime_error(error_.text());
        }
        return {answer, &g_variant_unref};
    }

    Error error_;
    Platform::GObjectPtr<GDBusConnection> connection_;
};

std::string nameOf(Bus& bus, const std::string& owner, const std::string& path) {
    const auto answer = bus.call(owner, path, "org.freedesktop.DBus.Properties", "Get",
                                 g_variant_new("(ss)", accessibleInterface, "Name"));
    GVariant* value = nullptr;
    g_variant_get(answer.get(), "(v)", &value);
    const Variant held(value, &g_variant_unref);
    return g_variant_get_string(value, nullptr);
}

std::string roleOf(Bus& bus, const std::string& owner, const std::string& path) {
    const auto answer = bus.call(owner, path, accessibleInterface, "GetRoleName");
    const char* role = nullptr;
    g_variant_get(answer.get(), "(&s)", &role);
    return role;
}

std::uint64_t statesOf(Bus& bus, const std::string& owner, const std::string& path) {
    const auto answer = bus.call(owner, path, accessibleInterface, "GetState");
    const Variant words(g_variant_get_child_value(answer.get(), 0), &g_variant_unref);
    std::uint64_t states = 0;
    for (gsize i = 0; i < g_variant_n_children(words.get()); ++i) {
        std::uint32_t word = 0;
        g_variant_get_child(words.get(), i, "u", &word);
        states |= static_cast<std::uint64_t>(word) << (32 * i);
    }
    return states;
}

/// Calls `found` with the bus name and the object path of each child of the accessible object at `path`.
template <typename Found>
void forEachChild(Bus& bus, const std::string& owner, const std::string& path, const Found& found) {
    const auto answer = bus.call(owner, path, accessibleInterface, "GetChildren");
    const Variant children(g_variant_get_child_value(answer.get(), 0), &g_variant_unref);
    for (gsize i = 0; i < g_variant_n_children(children.get()); ++i) {
        const char* childOwner = nullptr;
        const char* childPath = nullptr;
        g_variant_get_child(children.get(), i, "(&s&o)", &childOwner, &childPath);
        found(std::string(childOwner), std::string(childPath));
    }
}

void addObjects(Bus& bus, const std::string& owner, const std::string& path,
                std::vector<AccessibleObject>& objects) {
    const std::uint64_t states = statesOf(bus, owner, path);
    const auto has = [states](State state) { return ((states >> state) & 1U) != 0; };
    objects.push_back({.role = roleOf(bus, owner, path),
                       .name = nameOf(bus, owner, path),
                       .isEnabled = has(sensitive),
                       .isFocusable = has(focusable),
                       .isFocused = has(focused),
                       .isSelected = has(selected)});
    forEachChild(bus, owner, path, [&](const std::string& childOwner, const std::string& childPath) {
        if (childOwner == owner) {
            addObjects(bus, owner, childPath, objects);
        }
    });
}

pid_t processOf(Bus& bus, const std::string& owner) {
    const auto answer = bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                 "GetConnectionUnixProcessID", g_variant_new("(s)", owner.c_str()));
    std::uint32_t process = 0;
    g_variant_get(answer.get(), "(u)", &process);
    return static_cast<pid_t>(process);
}

std::vector<AccessibleObject> askTheBus(pid_t process) {
    Bus bus;
    std::vector<AccessibleObject> objects;
    forEachChild(bus, "org.a11y.atspi.Registry", rootPath,
                 [&](const std::string& owner, const std::string& path) {
                     if (processOf(bus, owner) == process) {
                         addObjects(bus, owner, path, objects);
                     }
                 });
    return objects;
}

} // namespace

std::vector<AccessibleObject> accessibleObjects() { return accessibleObjects(getpid()); }

std::vector<AccessibleObject> accessibleObjects(pid_t process) {
    std::vector<AccessibleObject> objects;
    std::exception_ptr failure;
    std::atomic<bool> isDone = false;
    std::thread asking([&] {
        try {
            objects = askTheBus(process);
        } catch (...) {
            failure = std::current_exception();
        }
        isDone = true;
    });
    // The loop terminates because each call on the bus has a timeout.
    while (!isDone) {
        static_cast<void>(runUntil([&] { return isDone.load(); }));
    }
    asking.join();
    if (failure) {
        std::rethrow_exception(failure);
    }
    return objects;
}

std::vector<AccessibleObject> accessibleObjects(const std::string& name) {
    auto objects = accessibleObjects();
    std::erase_if(objects, [&name](const AccessibleObject& object) { return object.name != name; });
    return objects;
}

} // namespace TestSupport
