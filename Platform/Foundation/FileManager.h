#pragma once

#include "Platform/Foundation/URL.h"

#include <sys/types.h>

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Platform {

/// Reports that a file or directory could not be read, written or created. Thrown by FileManager.
class FileError : public std::exception {
public:
    /// `localizedDescription` must be a complete sentence.
    explicit FileError(std::string localizedDescription)
        : localizedDescription_(std::move(localizedDescription)) {}

    /// A sentence for the user that names the file and the reason for the failure.
    const std::string& localizedDescription() const noexcept { return localizedDescription_; }
    const char* what() const noexcept override { return localizedDescription_.c_str(); }

private:
    std::string localizedDescription_;
};

/// Provides access to files, directories and their standard locations. Stateless and thread-safe.
///
/// Paths are file-system paths: names separated by "/", not percent-encoded.
class FileManager {
public:
    /// The maximum size, in bytes, of a file that `contents` can read.
    static constexpr std::uint64_t maximumContents = std::uint64_t{1} << 31U;

    /// The shared file manager of the process.
    static const FileManager& defaultManager();

    /// The user's home directory. On Linux, read from `HOME` or, if that is not absolute, the user database.
    URL homeDirectory() const;

    /// The application data directory, `Library/Application Support` in the home directory. May not exist.
    URL applicationSupportDirectory() const;

    /// Creates a directory and any missing parents. Does nothing if the directory already exists. Each new
    /// directory gets exactly `permissions` or, if they are not given, the user's default permissions.
    /// Existing directories keep their permissions. Throws FileError.
    void createDirectory(const std::string& path, std::optional<mode_t> permissions = std::nullopt) const;

    /// Returns the contents of a regular file. Follows symbolic links. Fails without blocking if the file is
    /// a pipe or a device. Throws FileError.
    std::string contents(const std::string& path) const;

    /// Replaces the contents of a file atomically and flushes the new contents to disk. At any time, even
    /// after a crash, the file has either its complete old or its complete new contents. An existing file
    /// keeps its permissions; a new file gets the user's default permissions. Follows symbolic links, even to
    /// a file that does not exist yet. Fails if `path` is a directory or a device.
    ///
    /// A temporary file left by a killed process is deleted by the next call for a file in its directory.
    ///
    /// Throws FileError. If the final flush of the directory fails, the new contents are already in place.
    /// After any other failure, the old file is unchanged and no temporary file remains.
    void writeAtomically(std::string_view data, const std::string& path) const;

private:
    /// Flushes a file or directory to disk. Returns -1 and sets `errno` on failure, including EINTR.
    static int flush(int descriptor);
};

} // namespace Platform
