#include "Platform/Foundation/FileManager.h"

#include "Platform/Foundation/RandomBytes.h"
#include "Platform/POSIX/Descriptor.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

namespace fs = std::filesystem;

/// Repeats a system call while it is interrupted by signals.
template <typename Call>
auto uninterrupted(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Describes an operation on a path, for error messages.
struct Task {
    std::string_view subject;
    std::string_view verb;
    const std::string& path;

    FileError failure(std::string_view reason) const {
        std::string sentence = "The ";
        sentence.append(subject).append(" \"").append(path).append("\" could not be ").append(verb);
        sentence.append(": ").append(reason).append(".");
        return FileError(std::move(sentence));
    }
    FileError failure(int systemError) const { return failure(std::generic_category().message(systemError)); }

    void requireUsablePath() const {
        if (path.empty()) {
            throw failure("The path is empty");
        }
        // The kernel would ignore the part of the name after the NUL.
        if (path.find('\0') != std::string::npos) {
            throw failure("The path contains a NUL character");
        }
    }
};

/// Returns 0 on success, otherwise an `errno` value.
int makeDirectory(const fs::path& path, std::optional<mode_t> permissions) {
    static constexpr mode_t usual = 0777;
    const bool isMade = mkdir(path.c_str(), permissions.value_or(usual)) == 0 &&
                        // Set the exact permissions, because mkdir applies the umask.
                        (!permissions || chmod(path.c_str(), *permissions) == 0);
    return isMade ? 0 : errno;
}

void createDirectories(const Task& task, const fs::path& path, std::optional<mode_t> permissions) {
    int error = makeDirectory(path, permissions);
    if (error == ENOENT && path.has_parent_path()) {
        createDirectories(task, path.parent_path(), permissions);
        error = makeDirectory(path, permissions);
    }
    // Accept an existing directory, regardless of the error that mkdir reports for it.
    if (std::error_code ignored; error != 0 && !fs::is_directory(path, ignored)) {
        throw task.failure(error);
    }
}

/// Returns the path with all symbolic links resolved. The file may be missing, but its directory must exist.
fs::path destinationOf(const Task& task) {
    fs::path path = task.path;
    while (true) {
        std::error_code error;
        fs::path file = fs::canonical(path, error);
        if (!error) {
            return file;
        }
        if (error != std::errc::no_such_file_or_directory) {
            throw task.failure(error.value());
        }
        const fs::path directory = fs::canonical(path.has_parent_path() ? path.parent_path() : ".", error);
        if (error) {
            throw task.failure(error.value());
        }
        path = directory / path.filename();
        const fs::path target = fs::read_symlink(path, error);
        if (error) {
            return path;
        }
        path = directory / target;
    }
}

constexpr std::string_view temporaryPrefix = ".keyloft-temporary-";

/// Returns a name for a temporary file. mkostemp is not suitable, because a new file must get the permissions
/// that the umask allows, and reading the umask requires changing it for all threads.
fs::path temporaryName(const Task& task) {
    std::array<std::byte, sizeof(std::uint64_t)> random = {};
    if (!RandomBytes::fill(random)) {
        throw task.failure(errno);
    }
    return std::string(temporaryPrefix) + std::to_string(std::bit_cast<std::uint64_t>(random));
}

/// Locks a temporary file to mark it as in use. If the process is killed, the kernel releases the lock.
/// Returns false and sets `errno` if the file is already locked (EWOULDBLOCK) or cannot be locked.
bool lock(int file) {
    return uninterrupted([&] { return flock(file, LOCK_EX | LOCK_NB); }) == 0;
}

/// Deletes the temporary files of processes that were killed while writing to the directory.
void removeAbandonedFiles(const fs::path& directory) {
    std::error_code error;
    for (fs::directory_iterator entry(directory, error); entry != fs::directory_iterator();
         entry.increment(error)) {
        const fs::path& path = entry->path();
        if (!path.filename().native().starts_with(temporaryPrefix)) {
            continue;
        }
        static constexpr int flags = O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY;
        const Descriptor file(uninterrupted([&] { return open(path.c_str(), flags); }));
        if (file.isOpen() && lock(file.get())) {
            unlink(path.c_str());
        }
    }
}

struct TemporaryFile {
    fs::path path;
    Descriptor descriptor;
};

/// Creates a temporary file and locks it. If the file system does not support locks, the file stays unlocked,
/// which is safe, because other processes cannot lock it to delete it.
TemporaryFile createTemporaryFile(const Task& task, const fs::path& directory, mode_t permissions) {
    static constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    while (true) {
        fs::path path = directory / temporaryName(task);
        Descriptor descriptor(uninterrupted([&] { return open(path.c_str(), flags, permissions); }));
        if (!descriptor.isOpen()) {
            throw task.failure(errno);
        }
        // Until the file is locked, another process may consider it abandoned and delete it.
        const bool isLockedElsewhere = !lock(descriptor.get()) && errno == EWOULDBLOCK;
        if (!isLockedElsewhere && access(path.c_str(), F_OK) == 0) {
            return {.path = std::move(path), .descriptor = std::move(descriptor)};
        }
    }
}

/// Returns false and sets `errno` if a write fails.
bool writeAll(int file, std::string_view data) {
    while (!data.empty()) {
        const ssize_t count = uninterrupted([&] { return write(file, data.data(), data.size()); });
        if (count <= 0) {
            return false;
        }
        data.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Gives the file the permissions of `original` and, if the user is allowed to do so, its owner and group.
bool makeResemble(int file, const struct stat& original) {
    const bool hasOwner = fchown(file, original.st_uid, original.st_gid) == 0;
    // Without the original owner, a set-ID bit would grant the rights of a different user.
    return fchmod(file, original.st_mode & (hasOwner ? 07777U : 0777U)) == 0;
}

} // namespace

const FileManager& FileManager::defaultManager() {
    static const FileManager manager;
    return manager;
}

void FileManager::createDirectory(const std::string& path, std::optional<mode_t> permissions) const {
    const Task task = {.subject = "directory", .verb = "created", .path = path};
    task.requireUsablePath();
    createDirectories(task, path, permissions);
}

std::string FileManager::contents(const std::string& path) const {
    const Task task = {.subject = "file", .verb = "read", .path = path};
    task.requireUsablePath();
    // Without O_NONBLOCK, opening a pipe waits for a writer.
    static constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const Descriptor file(uninterrupted([&] { return open(path.c_str(), flags); }));
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
        throw task.failure(errno);
    }
    // Accept a directory, because read() then fails with a more specific error.
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        throw task.failure("Not a regular file");
    }
    std::array<char, 65536> buffer;
    std::string data;
    // Read to the end of the file, because files in /proc report a size of 0 and any file may grow.
    for (auto size = static_cast<std::uint64_t>(status.st_size); size <= maximumContents;
         size = data.size()) {
        const ssize_t count = uninterrupted([&] { return read(file.get(), buffer.data(), buffer.size()); });
        if (count < 0) {
            throw task.failure(errno);
        }
        if (count == 0) {
            return data;
        }
        data.append(buffer.data(), static_cast<std::size_t>(count));
    }
    throw task.failure(EFBIG);
}

void FileManager::writeAtomically(std::string_view data, const std::string& path) const {
    const Task task = {.subject = "file", .verb = "written", .path = path};
    task.requireUsablePath();
    const fs::path destination = destinationOf(task);
    struct stat original = {};
    if (lstat(destination.c_str(), &original) != 0 && errno != ENOENT) {
        throw task.failure(errno);
    }
    // Accept a directory, because rename() then fails with a more specific error. A missing file has mode 0.
    if (S_ISCHR(original.st_mode) || S_ISBLK(original.st_mode)) {
        throw task.failure("Not a regular file");
    }
    const fs::path parent = destination.parent_path();
    static constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const Descriptor directory(uninterrupted([&] { return open(parent.c_str(), flags); }));
    // Do not flush a directory that the user may write to but not read, because it cannot be opened.
    if (!directory.isOpen() && errno != EACCES) {
        throw task.failure(errno);
    }

    removeAbandonedFiles(parent);
    // Only the owner may read the new contents until the new file has the permissions of the old file.
    const bool replaces = S_ISREG(original.st_mode);
    TemporaryFile temporary = createTemporaryFile(task, parent, replaces ? 0600 : 0666);
    Descriptor& file = temporary.descriptor;
    // Keep the file locked until it has been renamed.
    const Descriptor lockHolder(fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
    const bool isInPlace = lockHolder.isOpen() && writeAll(file.get(), data) &&
                           (!replaces || makeResemble(file.get(), original)) &&
                           uninterrupted([&] { return flush(file.get()); }) == 0 && file.close() &&
                           rename(temporary.path.c_str(), destination.c_str()) == 0;
    if (!isInPlace) {
        const int error = errno;
        unlink(temporary.path.c_str());
        throw task.failure(error);
    }
    // Ignore EINVAL and, on network file systems, ENOTSUP, which mean that a directory cannot be flushed.
    if (directory.isOpen() && uninterrupted([&] { return flush(directory.get()); }) != 0 && errno != EINVAL &&
        errno != ENOTSUP) {
        throw task.failure(errno);
    }
}

} // namespace Platform
