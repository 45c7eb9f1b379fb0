#pragma once

#include <string>
#include <vector>

namespace TestSupport {

/// Runs a program that is found in PATH, and runs the main loop until the program exits. Fails the test if
/// the exit status is not 0.
void runProgram(const std::vector<std::string>& arguments);

/// Runs xdotool, which sends key presses, clicks and pointer motion through the X server. Runs the main loop
/// until xdotool exits.
void runXdotool(const std::vector<std::string>& arguments);

/// Runs xdotool with arguments in shell syntax, and returns the lines of its output. Ignores errors, for
/// example if a window is not found. Does not run the main loop, so use it only for windows of other
/// programs.
std::vector<std::string> askXdotool(const std::string& arguments);

/// Waits until the GTK window with this title can receive key presses. Returns false if `patience` elapses
/// first.
[[nodiscard]] bool waitForFocus(const std::string& title);

} // namespace TestSupport
