#pragma once

#include <string>

namespace Platform {

/// Identifies the program. Read on Linux only; on macOS the bundle's Info.plist has the same information.
struct ProgramInfo {
    /// The application ID, in reverse DNS notation. It names the desktop entry, the icon and the folders of
    /// the user's data.
    std::string identifier;
    /// Shown to the user.
    std::string name;
    std::string version;
    // For the About panel.
    std::string description;
    std::string copyright;
};

/// Returns the value that was set last, or placeholder texts. Main thread only.
const ProgramInfo& programInfo();

/// Call it before any other function of AppKit.
void setProgramInfo(ProgramInfo info);

} // namespace Platform
