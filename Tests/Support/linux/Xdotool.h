#pragma once

#include <string>
#include <vector>

namespace TestSupport {

/// Types, clicks and moves as a person would, through the X server. The main loop runs meanwhile.
void runXdotool(const std::vector<std::string>& arguments);

} // namespace TestSupport
