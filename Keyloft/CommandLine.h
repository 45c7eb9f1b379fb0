#pragma once

#include <optional>
#include <span>

namespace Keyloft {

/// Handles the first option in `arguments`, which must not include the program name. Prints the help or the
/// version to standard output, or an error for an unknown option to standard error. Returns the exit status
/// of the program, or nothing if the arguments contain no option.
///
/// Skips URLs and the arguments for which `isSystemArgument` returns true. The argument "--" terminates the
/// options. Requires neither an application object nor a display.
std::optional<int> answerOption(std::span<char* const> arguments);

} // namespace Keyloft
