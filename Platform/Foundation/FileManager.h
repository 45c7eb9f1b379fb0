#pragma once

#include "Platform/Foundation/URL.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// Why a file or directory could not be read, written or created. Thrown by FileManager.
class FileError : public std::exception {
public:
    enum class Code {
        noSuchFile,
        noPermission,
        fileExists,
        isDirectory,
        notADirectory,
        notARegularFile,
        invalidName,
        nameTooLong,
        tooManyLinks,
        tooLarge,
        outOfSpace,
        readOnlyVolume,
        unknown,
    };

    FileError(Code code, std::string localizedDescription)
        : code_(code)
        , localizedDescription_(std::move(localizedDescription)) {}

    Code code() const noexcept { return code_; }
    /// A sentence for a person that names the file and the reason.
    const std::string& localizedDescription() const noexcept { return localizedDescription_; }
    const char* what() const noexcept override { return localizedDescription_.c_str(); }

private:
    Code code_;
    std::string localizedDescription_;
};

/// Files, directories and the places that the system has for them. Stateless; safe on any thread.
///
/// Paths are the system's own, "/" between names and not percent-encoded; a URL stands for its file path.
class FileManager {
public:
    /// The longest file that `contents` reads, in bytes.
    static constexpr std::uint64_t maximumContents = std::uint64_t{1} << 31U;

    static const FileManager& defaultManager();

    /// The user's home directory: what the session calls home, else what the user database does.
    URL homeDirectory() const;

    /// Where applications keep the user's data, best first, never empty. On every system this is the home
    /// directory's `Library/Application Support`, literally. Nothing is created.
    std::vector<URL> applicationSupportDirectories() const;

    /// Creates a directory. With intermediate directories, those missing on the way are created as well and
    /// an existing directory is fine; without, it is an error. Every directory created has exactly
    /// `posixPermissions` if they are given, else the user's default; one that exists keeps its own. Throws
    /// FileError.
    void createDirectory(const std::string& path, bool withIntermediateDirectories,
                         std::optional<unsigned> posixPermissions = std::nullopt) const;
    void createDirectory(const URL& url, bool withIntermediateDirectories,
                         std::optional<unsigned> posixPermissions = std::nullopt) const;

    /// The whole contents of a regular file, symbolic links followed. Never waits for a pipe's or device's
    /// other end: those are no regular files. Throws FileError.
    std::string contents(const std::string& path) const;
    std::string contents(const URL& url) const;

    /// Replaces the file's contents so that a reader, and a restart after a crash, finds the old ones or the
    /// new ones whole. Flushed to the disk before it returns. An existing file's permissions stay, a new
    /// one's are the user's default; symbolic links stay and are written through, to a file that need not
    /// exist yet. A directory or device in the file's place is an error.
    ///
    /// Throws FileError; the old file is then as it was and nothing else is left, except where only the last
    /// step, flushing the directory, failed after the new contents had taken their place.
    void writeAtomically(std::string_view data, const std::string& path) const;
    void writeAtomically(std::string_view data, const URL& url) const;
};

} // namespace Platform
