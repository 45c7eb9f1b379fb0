#pragma once

#include <string>

namespace Platform {

/// Describes the program. Used only on Linux; on macOS the bundle's Info.plist contains the same information.
struct ProgramInfo {
    /// The application ID in reverse DNS notation, also used for the desktop entry, icon and data folders.
    std::string identifier;
    /// The name that is shown to the user.
    std::string name;
    std::string version;
    // The description and the copyright notice, which are shown in the About panel.
    std::string description;
    std::string copyright;
};

/// Returns the information that was set last, or placeholders if none was set. Main thread only.
const ProgramInfo& programInfo();

/// Sets the information. Call it before any other AppKit function.
void setProgramInfo(ProgramInfo info);

} // namespace Platform
