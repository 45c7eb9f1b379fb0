#pragma once

#include <optional>
#include <string>

namespace Platform {

/// Returns the path of the application's folder in `userDirectory`. Creates the folder if it does not exist,
/// and allows only the user to access it. On failure, logs a diagnostic message and returns nothing.
std::optional<std::string> privateFolder(const char* userDirectory);

} // namespace Platform
