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
    /// `localizedDescription` is a whole sentence.
    explicit FileError(std::string localizedDescription)
        : localizedDescription_(std::move(localizedDescription)) {}

    /// A sentence for the user that names the file and the reason.
    const std::string& localizedDescription() const noexcept { return localizedDescription_; }
    const char* what() const noexcept override { return localizedDescription_.c_str(); }

private:
    std::string localizedDescription_;
};

/// Files, directories and their standard locations. Stateless; safe on any thread.
///
/// Paths are those of the kernel: names separated by "/", not percent-encoded.
class FileManager {
public:
    /// The longest file that `contents` reads, in bytes.
    static constexpr std::uint64_t maximumContents = std::uint64_t{1} << 31U;

    /// The file manager of the process.
    static const FileManager& defaultManager();

    /// The user's home directory, as defined by the session or, failing that, by the user database.
    URL homeDirectory() const;

    /// The directory for applications' data: `Library/Application Support` in the home directory, on every
    /// platform. Creates nothing.
    URL applicationSupportDirectory() const;

    /// Creates a directory and its missing parents. Accepts an existing directory. Each directory created has
    /// exactly `permissions` if they are given, otherwise the user's default; an existing one keeps its own.
    /// Throws FileError.
    void createDirectory(const std::string& path, std::optional<mode_t> permissions = std::nullopt) const;

    /// Returns the whole contents of a regular file and follows symbolic links. A pipe or device is an error;
    /// the function never waits for its other end. Throws FileError.
    std::string contents(const std::string& path) const;

    /// Replaces the file's contents so that a reader, and a restart after a crash, finds either the old or
    /// the new ones complete. Returns after they are on the disk. An existing file keeps its permissions, a
    /// new one gets the user's default. Symbolic links are followed, also to a file that does not exist yet.
    /// A directory or device at `path` is an error.
    ///
    /// Throws FileError. The old file is then unchanged and nothing else is left, unless only the last step
    /// failed, which is to flush the directory after the new contents are in place.
    void writeAtomically(std::string_view data, const std::string& path) const;

private:
    /// Writes the contents of a file or directory to the disk. Returns -1 and sets `errno` on failure,
    /// including an interruption (EINTR).
    static int flush(int descriptor);
};

} // namespace Platform
