#pragma once

#include <string>
#include <vector>

namespace TestSupport {

/// Runs a program from PATH until it ends. The main loop runs meanwhile. Fails the test if the program fails.
void runProgram(const std::vector<std::string>& arguments);

/// Types, clicks and moves the pointer through the X server, as a user does. The main loop runs meanwhile.
void runXdotool(const std::vector<std::string>& arguments);

/// Runs xdotool with arguments in shell syntax and returns its output lines. Ignores errors, such as a window
/// that is not found. The main loop does not run meanwhile, so use it for windows of other programs.
std::vector<std::string> askXdotool(const std::string& arguments);

} // namespace TestSupport
