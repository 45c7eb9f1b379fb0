#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// The objects that this or another program exposes to assistive technology, queried over the session's
/// accessibility bus as a screen reader does. Main thread only. The main loop runs meanwhile, because this
/// program may be the one that answers.
namespace TestSupport {

struct AccessibleObject {
    /// The bus's name of the role, such as "push button" or "text".
    std::string role;
    std::string name;
    bool isEnabled = false;
    bool isFocusable = false;
    bool isFocused = false;
};

/// All objects of this program except those of web pages, each before the objects inside it. Throws
/// std::runtime_error if the bus does not answer.
std::vector<AccessibleObject> accessibleObjects();

/// All such objects of another process.
std::vector<AccessibleObject> accessibleObjects(pid_t process);

/// The objects of this program with this name.
std::vector<AccessibleObject> accessibleObjects(const std::string& name);

} // namespace TestSupport
