#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// Writes `text` as one line to standard error, behind the local time, the program's name and the process's
/// number, in one write. Line breaks and other control characters in the text are written as escapes, so that
/// no text can pass for a second line or steer a terminal. A standard error that nobody reads is no failure.
/// Safe on any thread.
void diagnosticLog(std::string_view text);

/// `text` with line breaks and other control characters written as escapes ("\n", "\x1b"), tabs aside.
std::string escapingControlCharacters(std::string_view text);

} // namespace Platform
