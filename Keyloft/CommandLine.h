#pragma once

#include <optional>
#include <span>

namespace Keyloft {

/// Handles the first option in `arguments`, which exclude the program's name: prints the help or the version
/// to standard output, or one line about an unknown option to standard error. Returns the exit status of the
/// program, or nothing if there is no option. Skips URLs and the arguments that `isSystemArgument`
/// identifies; "--" ends the options. Needs neither an application object nor a display.
std::optional<int> answerOption(std::span<char* const> arguments);

} // namespace Keyloft
