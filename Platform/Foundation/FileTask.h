#pragma once

#include "Platform/Foundation/FileManager.h"

#include <string>
#include <string_view>

namespace Platform {

/// What was being done to which path; makes the errors of that work. For FileManager's own sources.
struct FileTask {
    std::string_view subject;
    std::string_view verb;
    const std::string& path;

    FileError failure(FileError::Code code, std::string_view reason) const;
    /// The system's own reason, an `errno`.
    FileError failure(int systemError) const;

    /// A NUL would silently cut the path short for the system, and so name another file. Throws FileError.
    void requireUsablePath() const;
};

} // namespace Platform
