#include "Platform/Foundation/FileManager.h"

#include "Platform/Foundation/FileSystem.h"
#include "Platform/Foundation/FileTask.h"
#include "Platform/Foundation/RandomBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <span>
#include <utility>

namespace Platform {

namespace {

using Code = FileError::Code;

/// Repeats a system call for as long as signals interrupt it.
template <typename Call>
auto uninterrupted(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

class Descriptor {
public:
    explicit Descriptor(int descriptor = -1)
        : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const { return descriptor_; }
    bool isOpen() const { return descriptor_ >= 0; }

    /// False with errno where the system reports only now that earlier writes failed.
    bool close() {
        if (descriptor_ < 0) {
            return true;
        }
        // Interrupted or not, the descriptor is gone afterwards and must not be closed again.
        return ::close(std::exchange(descriptor_, -1)) == 0 || errno == EINTR;
    }

private:
    int descriptor_;
};

/// A directory kept open, so that all steps of a replacement happen in it even if it is moved meanwhile.
class Directory {
public:
    explicit Directory(const FileTask& task)
        : task_(task) {}

    /// Moves to `path`, relative to the present directory.
    void enter(const std::string& path) {
        Descriptor entered(openRelative(path, O_RDONLY));
        if (!entered.isOpen() && errno == EACCES) {
            // One that may be searched but not listed serves as well; it just cannot be flushed.
            entered = Descriptor(openRelative(path, FileSystem::searchOnly));
            canFlush_ = false;
        } else {
            canFlush_ = true;
        }
        if (!entered.isOpen()) {
            throw task_.failure(errno);
        }
        descriptor_ = std::move(entered);
    }

    int get() const { return descriptor_.isOpen() ? descriptor_.get() : AT_FDCWD; }

    void flush() const {
        // Some file systems cannot flush a directory, and say so with EINVAL; servers' with ENOTSUP.
        if (canFlush_ && uninterrupted([&] { return FileSystem::flush(descriptor_.get()); }) != 0 &&
            errno != EINVAL && errno != ENOTSUP) {
            throw task_.failure(errno);
        }
    }

private:
    int openRelative(const std::string& path, int access) const {
        return uninterrupted([&] { return openat(get(), path.c_str(), access | O_DIRECTORY | O_CLOEXEC); });
    }

    const FileTask& task_;
    Descriptor descriptor_;
    bool canFlush_ = false;
};

/// The file that `path` means in the end: a directory, and a name in it that is no symbolic link.
struct Destination {
    Directory directory;
    std::string name;

    explicit Destination(const FileTask& task)
        : directory(task) {
        // As many as the kernel itself follows.
        static constexpr int maximumLinks = 40;
        std::string path = task.path;
        for (int links = 0; links <= maximumLinks; ++links) {
            const std::size_t slash = path.rfind('/');
            name = slash == std::string::npos ? path : path.substr(slash + 1);
            if (name.empty() || name == "." || name == "..") {
                throw task.failure(EISDIR);
            }
            directory.enter(slash == std::string::npos ? "." : path.substr(0, slash + 1));
            if (!readLink(task, path)) {
                return;
            }
        }
        throw task.failure(ELOOP);
    }

private:
    /// False if the name is no link.
    bool readLink(const FileTask& task, std::string& target) const {
        std::array<char, 4096> buffer = {};
        const ssize_t length = readlinkat(directory.get(), name.c_str(), buffer.data(), buffer.size());
        if (length >= 0) {
            target.assign(buffer.data(), static_cast<std::size_t>(length));
            return true;
        }
        // EINVAL: it is there and no link. ENOENT: it is not there, and will be created.
        if (errno != EINVAL && errno != ENOENT) {
            throw task.failure(errno);
        }
        return false;
    }
};

/// A file of an unpredictable name that removes itself unless it was moved into place.
class TemporaryFile {
public:
    TemporaryFile(const FileTask& task, const Directory& directory, mode_t mode)
        : task_(task)
        , directory_(directory) {
        static constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
        static constexpr int attempts = 16;
        int systemError = EEXIST;
        for (int attempt = 0; attempt < attempts && systemError == EEXIST; ++attempt) {
            chooseName();
            file_ =
                Descriptor(uninterrupted([&] { return openat(directory.get(), name_.data(), flags, mode); }));
            systemError = file_.isOpen() ? 0 : errno;
        }
        if (systemError != 0) {
            throw task_.failure(systemError);
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!isInPlace_) {
            unlinkat(directory_.get(), name_.data(), 0);
        }
    }

    void write(std::string_view data) {
        while (!data.empty()) {
            const ssize_t count =
                uninterrupted([&] { return ::write(file_.get(), data.data(), data.size()); });
            if (count <= 0) {
                throw task_.failure(count < 0 ? errno : EIO);
            }
            data.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    /// Takes over the permissions and, as far as the user may, the owner and group of the file to be
    /// replaced.
    void resemble(const struct stat& original) {
        mode_t mode = original.st_mode & 07777U;
        if (fchown(file_.get(), original.st_uid, original.st_gid) != 0) {
            // Set-ID bits would speak for somebody else.
            mode &= 0777U;
        }
        if (fchmod(file_.get(), mode) != 0) {
            throw task_.failure(errno);
        }
    }

    void flushAndClose() {
        if (uninterrupted([&] { return FileSystem::flush(file_.get()); }) != 0 || !file_.close()) {
            throw task_.failure(errno);
        }
    }

    void moveTo(const std::string& name) {
        if (renameat(directory_.get(), name_.data(), directory_.get(), name.c_str()) != 0) {
            throw task_.failure(errno);
        }
        isInPlace_ = true;
    }

private:
    static constexpr std::string_view prefix = ".temporary-";
    static constexpr std::size_t randomLength = 16;

    /// The name is independent of the file's own, which may be as long as names can be.
    void chooseName() {
        static constexpr std::string_view digits = "0123456789abcdef";
        std::array<std::byte, randomLength> random = {};
        if (!RandomBytes::fill(random)) {
            throw task_.failure(errno);
        }
        std::size_t length = prefix.copy(name_.data(), prefix.size());
        for (const std::byte byte : random) {
            name_[length++] = digits[std::to_integer<std::size_t>(byte >> 4U)];
            name_[length++] = digits[std::to_integer<std::size_t>(byte & std::byte{0xF})];
        }
    }

    const FileTask& task_;
    const Directory& directory_;
    std::array<char, prefix.size() + (2 * randomLength) + 1> name_ = {};
    Descriptor file_;
    bool isInPlace_ = false;
};

} // namespace

const FileManager& FileManager::defaultManager() {
    static const FileManager manager;
    return manager;
}

void FileManager::createDirectory(const URL& url, bool withIntermediateDirectories,
                                  std::optional<unsigned> posixPermissions) const {
    createDirectory(url.filePath(), withIntermediateDirectories, posixPermissions);
}

std::string FileManager::contents(const std::string& path) const {
    const FileTask task = {.subject = "file", .verb = "read", .path = path};
    task.requireUsablePath();

    // Opening a pipe without a writer would wait for one.
    static constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const Descriptor file(uninterrupted([&] { return open(path.c_str(), flags); }));
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
        throw task.failure(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        throw task.failure(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        throw task.failure(Code::notARegularFile, "Not a regular file");
    }

    // The size is a first guess: the file may grow, and some files do not know theirs. One byte more than it
    // lets the usual file end without growing the text.
    static constexpr std::size_t growth = 65536;
    std::string data;
    std::size_t length = 0;
    auto room = static_cast<std::uint64_t>(status.st_size) + 1;
    while (true) {
        if (length + room > maximumContents + 1) {
            throw task.failure(EFBIG);
        }
        data.resize(length + static_cast<std::size_t>(room));
        const auto rest = std::span(data).subspan(length);
        const ssize_t count = uninterrupted([&] { return read(file.get(), rest.data(), rest.size()); });
        if (count < 0) {
            throw task.failure(errno);
        }
        length += static_cast<std::size_t>(count);
        if (count == 0) {
            data.resize(length);
            return data;
        }
        room = data.size() > length ? data.size() - length : growth;
    }
}

std::string FileManager::contents(const URL& url) const { return contents(url.filePath()); }

void FileManager::writeAtomically(std::string_view data, const std::string& path) const {
    const FileTask task = {.subject = "file", .verb = "written", .path = path};
    task.requireUsablePath();
    const Destination destination(task);

    struct stat original = {};
    const bool exists =
        fstatat(destination.directory.get(), destination.name.c_str(), &original, AT_SYMLINK_NOFOLLOW) == 0;
    if (!exists && errno != ENOENT) {
        throw task.failure(errno);
    }
    if (exists && S_ISDIR(original.st_mode)) {
        throw task.failure(EISDIR);
    }
    if (exists && (S_ISCHR(original.st_mode) || S_ISBLK(original.st_mode))) {
        throw task.failure(Code::notARegularFile, "Not a regular file");
    }

    // What replaces a file is readable for its owner alone until it has the permissions of that file.
    const bool replaces = exists && S_ISREG(original.st_mode);
    TemporaryFile file(task, destination.directory, replaces ? 0600 : 0666);
    file.write(data);
    if (replaces) {
        file.resemble(original);
    }
    file.flushAndClose();
    file.moveTo(destination.name);
    destination.directory.flush();
}

void FileManager::writeAtomically(std::string_view data, const URL& url) const {
    writeAtomically(data, url.filePath());
}

} // namespace Platform
