#pragma once

#include <string>

namespace Platform {

/// Who the program is. Only Linux reads it: on macOS the bundle's Info.plist says the same to the system.
struct ProgramInfo {
    /// In reverse DNS. The desktop entry, the icon and the folders of the user's data have this name.
    std::string identifier;
    /// As people read it.
    std::string name;
    std::string version;
    // For the About panel.
    std::string description;
    std::string copyright;
};

/// What was set last; before that, texts that name no program. Main thread only.
const ProgramInfo& programInfo();

/// To be called before anything else of AppKit.
void setProgramInfo(ProgramInfo info);

} // namespace Platform
