#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// Queries the objects that this or another program exposes to assistive technologies, over the session's
/// accessibility bus, as a screen reader does. The functions run the main loop until the bus has replied,
/// because this program may itself have to reply to the query. Main thread only.
namespace TestSupport {

struct AccessibleObject {
    /// The name of the AT-SPI role, such as "push button" or "text".
    std::string role;
    std::string name;
    bool isEnabled = false;
    bool isFocusable = false;
    bool isFocused = false;
    bool isSelected = false;
};

/// Returns all objects of this program except those in web pages. Parents precede their children. Throws
/// std::runtime_error if the bus does not reply.
std::vector<AccessibleObject> accessibleObjects();

/// Like `accessibleObjects()`, but for another process.
std::vector<AccessibleObject> accessibleObjects(pid_t process);

/// Like `accessibleObjects()`, but returns only the objects with this name.
std::vector<AccessibleObject> accessibleObjects(const std::string& name);

} // namespace TestSupport
