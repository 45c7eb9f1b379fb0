#pragma once

#include <string>

namespace Platform {

/// Identifies the program. Read on Linux only; on macOS the bundle's Info.plist has the same information.
struct ProgramInfo {
    /// In reverse DNS notation: the name of the desktop entry, the icon and the folders of the user's data.
    std::string identifier;
    /// Shown to people.
    std::string name;
    std::string version;
    // For the About panel.
    std::string description;
    std::string copyright;
};

/// The value that was set last, or placeholder texts. Main thread only.
const ProgramInfo& programInfo();

/// To be called before anything else of AppKit.
void setProgramInfo(ProgramInfo info);

} // namespace Platform
