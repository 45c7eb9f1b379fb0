#pragma once

#include <optional>
#include <string>

namespace Platform {

/// The application's own folder in one of the user's directories, made if need be, which only the user may
/// enter. Nothing, and a line in the diagnostic log, where it cannot be had.
std::optional<std::string> privateFolder(const char* userDirectory);

} // namespace Platform
