#pragma once

#include <optional>
#include <span>

namespace Keyloft {

/// Answers the first option among the program's arguments, which come without the program's name: prints the
/// help or the version to standard output, or one line about an unknown option to standard error. Returns the
/// exit status with which the program ends, or nothing if there is no option. Every other argument is a URL,
/// and so is each one after "--". Needs no application object and no display.
std::optional<int> answerOption(std::span<char* const> arguments);

} // namespace Keyloft
