#include "Platform/Foundation/FileManager.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <set>
#include <string>
#include <utility>

namespace {

/// A simulated failure of a C library function. The function fails once, with `errno` set to `error`, after
/// `successes` successful calls. If `error` is 0, the function does not fail.
struct NextFailure {
    int error = 0;
    int successes = 0;

    bool isDue() {
        if (error == 0 || successes-- > 0) {
            return false;
        }
        errno = std::exchange(error, 0);
        return true;
    }
};

NextFailure nextFsync;
NextFailure nextClose;
NextFailure nextFchown;
NextFailure nextWrite;
NextFailure nextOpen;

} // namespace

// With --wrap, the linker redirects calls to a C library function, such as `close`, to `__wrap_close`.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_fsync(int descriptor);
int __real_close(int descriptor);
int __real_fchown(int descriptor, uid_t owner, gid_t group);
ssize_t __real_write(int descriptor, const void* bytes, size_t count);
int __real_open(const char* path, int flags, ...);

int __wrap_fsync(int descriptor) { return nextFsync.isDue() ? -1 : __real_fsync(descriptor); }
int __wrap_close(int descriptor) {
    const int closed = __real_close(descriptor);
    return nextClose.isDue() ? -1 : closed;
}
int __wrap_fchown(int descriptor, uid_t owner, gid_t group) {
    return nextFchown.isDue() ? -1 : __real_fchown(descriptor, owner, group);
}
ssize_t __wrap_write(int descriptor, const void* bytes, size_t count) {
    return nextWrite.isDue() ? -1 : __real_write(descriptor, bytes, count);
}
int __wrap_open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return nextOpen.isDue() ? -1 : __real_open(path, flags, mode);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using Platform::FileError;
using Platform::FileManager;
using TestSupport::contentsOf;
using TestSupport::namesIn;
using TestSupport::TemporaryDirectory;
using TestSupport::writeContents;
using Names = std::set<std::string>;

class FileManagerFailureTest : public testing::Test {
protected:
    FileManagerFailureTest() { writeContents(file_, "old"); }

    void TearDown() override {
        for (const auto* next : {&nextFsync, &nextClose, &nextFchown, &nextWrite, &nextOpen}) {
            EXPECT_EQ(next->error, 0) << "The failure did not happen.";
        }
    }

    void write() const { FileManager::defaultManager().writeAtomically("new", file_); }

    void expectFailure(const std::string& reason, const std::string& contents) const {
        try {
            write();
            ADD_FAILURE() << "The file was written.";
        } catch (const FileError& error) {
            EXPECT_EQ(error.localizedDescription(),
                      "The file \"" + file_ + "\" could not be written: " + reason + ".");
        }
        EXPECT_EQ(contentsOf(file_), contents);
        EXPECT_EQ(namesIn(directory_.path()), Names{"file"});
    }

    const std::string& file() const { return file_; }

private:
    TemporaryDirectory directory_;
    std::string file_ = directory_ / "file";
};

TEST_F(FileManagerFailureTest, leavesTheOldFileIfItCannotBeFlushed) {
    nextFsync = {.error = EIO};
    expectFailure("Input/output error", "old");
}

TEST_F(FileManagerFailureTest, leavesTheOldFileIfClosingReportsALostWrite) {
    nextClose = {.error = EDQUOT};
    expectFailure("Disk quota exceeded", "old");
}

TEST_F(FileManagerFailureTest, leavesTheOldFileIfItsDirectoryCannotBeOpened) {
    nextOpen = {.error = EMFILE};
    expectFailure("Too many open files", "old");
}

TEST_F(FileManagerFailureTest, writesInADirectoryThatMayNotBeListed) {
    nextOpen = {.error = EACCES};
    EXPECT_NO_THROW(write());
    EXPECT_EQ(contentsOf(file()), "new");
}

TEST_F(FileManagerFailureTest, reportsADirectoryThatCannotBeFlushed) {
    nextFsync = {.error = EIO, .successes = 1};
    expectFailure("Input/output error", "new");
}

TEST_F(FileManagerFailureTest, acceptsFileSystemsThatCannotFlushDirectories) {
    for (const int error : {EINVAL, ENOTSUP}) {
        nextFsync = {.error = error, .successes = 1};
        EXPECT_NO_THROW(write());
    }
}

TEST_F(FileManagerFailureTest, repeatsWhatASignalInterrupted) {
    nextWrite = {.error = EINTR};
    nextFsync = {.error = EINTR};
    nextClose = {.error = EINTR};
    EXPECT_NO_THROW(write());
    EXPECT_EQ(contentsOf(file()), "new");
    nextFsync = {.error = EINTR, .successes = 1};
    EXPECT_NO_THROW(write());
}

TEST_F(FileManagerFailureTest, dropsSetIDBitsIfTheOwnerCannotBeKept) {
    ASSERT_EQ(chmod(file().c_str(), 06755), 0);
    nextFchown = {.error = EPERM};
    write();
    struct stat status = {};
    ASSERT_EQ(stat(file().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0755U);
}

} // namespace
