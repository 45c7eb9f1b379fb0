#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// Writes `text` to standard error as one line in a single write, preceded by the local time, program name
/// and process ID. Escapes line breaks and other control characters, so that `text` cannot imitate a second
/// line or control a terminal. Ignores write errors, for example on a closed pipe. Thread-safe.
void diagnosticLog(std::string_view text);

/// Returns `text` with control characters, except tabs, replaced by escape sequences ("\n", "\x1b").
std::string escapingControlCharacters(std::string_view text);

} // namespace Platform
