#pragma once

#include <string>
#include <vector>

namespace TestSupport {

/// Runs a program from PATH until it ends, and the main loop meanwhile. Fails the test if the program fails.
void runProgram(const std::vector<std::string>& arguments);

/// Types, clicks and moves as a person would, through the X server. The main loop runs meanwhile.
void runXdotool(const std::vector<std::string>& arguments);

/// What xdotool answers to a shell's words, line by line; what goes wrong, no window found above all, is no
/// line. The main loop stands still meanwhile: for windows of other programs.
std::vector<std::string> askXdotool(const std::string& arguments);

} // namespace TestSupport
