#pragma once

#include <string>
#include <string_view>

namespace KeyloftCore {

/// Writes `message` and a line feed to standard error in one write, without a prefix. Does not report
/// failures. Safe on any thread.
void log(std::string_view message);

/// Shortens a value for the log. A value of more than 12 characters becomes its first 8, "…(", the number of
/// its characters and ")". Other values stay as they are.
std::string redact(std::string_view value);

} // namespace KeyloftCore
