#pragma once

#include <string>
#include <string_view>

namespace KeyloftCore {

/// Writes `message` and a line feed to standard error in one write, with nothing in front. A failure is not
/// reported. Safe on any thread.
void log(std::string_view message);

/// A long value as a log may show it: what has more than 12 characters is cut to its first 8, followed by
/// "…(", the number of its characters and ")".
std::string redact(std::string_view value);

} // namespace KeyloftCore
