#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// Writes `text` as one line to standard error in one write, after the local time, the program's name and the
/// process ID. Escapes line breaks and other control characters, so that no text can imitate a second line or
/// control a terminal. Write errors, such as a closed pipe, are ignored. Safe on any thread.
void diagnosticLog(std::string_view text);

/// `text` with line breaks and other control characters except tabs written as escapes ("\n", "\x1b").
std::string escapingControlCharacters(std::string_view text);

} // namespace Platform
