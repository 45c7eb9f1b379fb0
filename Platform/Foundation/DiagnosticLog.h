#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// Writes `text` to standard error as a single line and in a single write, preceded by the local time, the
/// program's name and the process ID. Escapes line breaks and other control characters, so that `text` cannot
/// imitate a second line or control a terminal. Ignores write errors, for example on a closed pipe.
/// Thread-safe.
void diagnosticLog(std::string_view text);

/// Returns `text` with line breaks and other control characters, except tabs, replaced by escape sequences
/// ("\n", "\x1b").
std::string escapingControlCharacters(std::string_view text);

} // namespace Platform
