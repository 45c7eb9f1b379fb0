#pragma once

#include <optional>
#include <string>

namespace Platform {

/// Returns the path of the application's own folder in `userDirectory`, which only the user may enter.
/// Creates the folder if it does not exist. On failure writes a line to the diagnostic log and returns
/// nothing.
std::optional<std::string> privateFolder(const char* userDirectory);

} // namespace Platform
