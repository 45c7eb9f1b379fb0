#pragma once

#include <optional>
#include <span>

namespace Keyloft {

/// Handles the first option in `arguments`, which exclude the program's name: prints the help or the version
/// to standard output, or one line about an unknown option to standard error. Returns the program's exit
/// status, or nothing if there is no option. All other arguments, and all after "--", are URLs. Needs no
/// application object and no display.
std::optional<int> answerOption(std::span<char* const> arguments);

} // namespace Keyloft
