#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// What assistive technology is told of this program or another, asked over the session's accessibility bus
/// as a screen reader does. Main thread only; the main loop runs meanwhile, as it may be this program that
/// answers.
namespace TestSupport {

struct AccessibleObject {
    /// As the bus names it: "push button", "text".
    std::string role;
    std::string name;
    bool isEnabled = false;
    bool isFocusable = false;
    bool isFocused = false;
};

/// Every object of this program, from the outside to the inside, those of web pages left out. Throws
/// std::runtime_error when the bus does not answer.
std::vector<AccessibleObject> accessibleObjects();

/// Every such object of another process.
std::vector<AccessibleObject> accessibleObjects(pid_t process);

/// Those of this program that have the name.
std::vector<AccessibleObject> accessibleObjects(const std::string& name);

} // namespace TestSupport
