#pragma once

#include <string>
#include <string_view>

namespace KeyloftCore {

/// Writes `message` and a newline to standard error with a single write, without a prefix. Ignores write
/// errors. Thread-safe.
void log(std::string_view message);

/// Shortens a value for the log. A value longer than 12 characters is replaced by its first 8 characters,
/// "…(", its length in characters and ")". Other values are returned unchanged.
std::string redact(std::string_view value);

} // namespace KeyloftCore
