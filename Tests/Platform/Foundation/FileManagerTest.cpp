#include "Platform/Foundation/FileManager.h"

#include "Platform/POSIX/Descriptor.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/PrivateMounts.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace {

namespace fs = std::filesystem;

using Platform::FileError;
using Platform::FileManager;
using TestSupport::contentsOf;
using TestSupport::EnvironmentVariable;
using TestSupport::namesIn;
using TestSupport::present;
using TestSupport::TemporaryDirectory;
using TestSupport::writeContents;
using Names = std::set<std::string>;

const FileManager& files() { return FileManager::defaultManager(); }

template <typename Operation>
std::optional<FileError> failureOf(const Operation& operation) {
    try {
        operation();
    } catch (const FileError& error) {
        return error;
    }
    return std::nullopt;
}

template <typename Operation>
void expectFailure(std::string_view sentence, const Operation& operation) {
    const auto failure = failureOf(operation);
    ASSERT_TRUE(failure) << sentence;
    const FileError error = present(failure);
    EXPECT_EQ(error.localizedDescription(), sentence);
    EXPECT_STREQ(error.what(), error.localizedDescription().c_str());
}

void expectReadFailure(const std::string& reason, const std::string& path) {
    expectFailure("The file \"" + path + "\" could not be read: " + reason + ".",
                  [&] { std::ignore = files().contents(path); });
}

void expectWriteFailure(const std::string& reason, const std::string& path, std::string_view data = "new") {
    expectFailure("The file \"" + path + "\" could not be written: " + reason + ".",
                  [&] { files().writeAtomically(data, path); });
}

void expectCreationFailure(const std::string& reason, const std::string& path) {
    expectFailure("The directory \"" + path + "\" could not be created: " + reason + ".",
                  [&] { files().createDirectory(path); });
}

mode_t modeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

TEST(FileManager, theHomeDirectoryIsTheSessions) {
    const EnvironmentVariable home("HOME", "/home/a b");
    EXPECT_EQ(files().homeDirectory().filePath(), "/home/a b");
    EXPECT_EQ(files().homeDirectory().absoluteString(), "file:///home/a%20b/");
}

TEST(FileManager, withoutAUsableHomeInTheSessionTheUserDatabaseIsAsked) {
    const TemporaryDirectory directory;
    const std::string database = directory / "passwd";
    const std::string user = "u:x:" + std::to_string(getuid()) + ":" + std::to_string(getgid()) + "::";
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        writeContents(database, "");
        ASSERT_EQ(mount(database.c_str(), "/etc/passwd", nullptr, MS_BIND, nullptr), 0);
        for (const char* value : {static_cast<const char*>(nullptr), "", "relative"}) {
            const EnvironmentVariable home("HOME", value);
            writeContents(database, user + "/home/in the database:\n");
            EXPECT_EQ(files().homeDirectory().filePath(), "/home/in the database");
            writeContents(database, user + "relative:\n");
            EXPECT_EQ(files().homeDirectory().filePath(), "/");
        }
    });
}

TEST(FileManager, applicationSupportIsTheHomeDirectorysLiterally) {
    const EnvironmentVariable home("HOME", "/home/someone");
    const auto support = files().applicationSupportDirectory();
    EXPECT_EQ(support.filePath(), "/home/someone/Library/Application Support");
    EXPECT_EQ(support.appendingPathComponent("Keyloft", true)
                  .appendingPathComponent("bookmarks.json", false)
                  .absoluteString(),
              "file:///home/someone/Library/Application%20Support/Keyloft/bookmarks.json");
}

TEST(FileManager, directoriesAreCreatedWithThoseOnTheWay) {
    const TemporaryDirectory directory;
    const std::string path = directory / "a/b c/d";
    files().createDirectory(path);
    EXPECT_TRUE(fs::is_directory(path));
    files().createDirectory(path);
    files().createDirectory(directory / "a/e///f/");
    EXPECT_TRUE(fs::is_directory(directory / "a/e/f"));
    files().createDirectory(directory / "g/./h/../i");
    EXPECT_TRUE(fs::is_directory(directory / "g/i"));
    files().createDirectory("/");
}

TEST(FileManager, directoriesAreCreatedRelativeToTheWorkingDirectory) {
    const TemporaryDirectory directory;
    const fs::path previous = fs::current_path();
    fs::current_path(directory.path());
    files().createDirectory("a/b");
    files().createDirectory(".");
    files().writeAtomically("x", "file");
    EXPECT_EQ(files().contents("file"), "x");
    fs::current_path(previous);
    EXPECT_EQ(namesIn(directory.path()), (Names{"a", "file"}));
    EXPECT_TRUE(fs::is_directory(directory / "a/b"));
}

TEST(FileManager, createsDirectoriesWithExactlyThePermissionsGiven) {
    const TemporaryDirectory directory;
    const mode_t previous = umask(0077);
    files().createDirectory(directory / "usual/inner");
    files().createDirectory(directory / "shared/inner", 0775);
    files().createDirectory(directory / "usual", 0775);
    umask(previous);
    EXPECT_EQ(modeOf(directory / "usual"), 0700U);
    EXPECT_EQ(modeOf(directory / "usual/inner"), 0700U);
    EXPECT_EQ(modeOf(directory / "shared"), 0775U);
    EXPECT_EQ(modeOf(directory / "shared/inner"), 0775U);
}

TEST(FileManager, aLinkToADirectoryIsADirectory) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "real");
    fs::create_directory_symlink("real", directory / "link");
    files().createDirectory(directory / "link");
    files().createDirectory(directory / "link/inner");
    EXPECT_TRUE(fs::is_directory(directory / "real/inner"));
}

TEST(FileManager, aFileInTheWayOfADirectoryIsAnError) {
    const TemporaryDirectory directory;
    writeContents(directory / "file", "x");
    fs::create_symlink("nowhere", directory / "dangling");
    expectCreationFailure("File exists", directory / "file");
    expectCreationFailure("Not a directory", directory / "file/below");
    expectCreationFailure("File exists", directory / "dangling");
    expectCreationFailure("File exists", directory / "dangling/below");
    expectCreationFailure("File name too long", directory / std::string(256, 'n'));
    expectCreationFailure("The path is empty", "");
    expectCreationFailure("The path contains a NUL character", (directory / "a") + std::string("\0b", 2));
}

TEST(FileManager, aFileIsReadWhole) {
    const TemporaryDirectory directory;
    for (const std::size_t size : {0U, 1U, 4096U, 1'000'000U}) {
        std::string data(size, 'x');
        if (size > 2) {
            data[size / 2] = '\0';
        }
        writeContents(directory / "file", data);
        EXPECT_EQ(files().contents(directory / "file"), data);
    }
}

TEST(FileManager, aFileThatDoesNotKnowItsSizeIsReadWhole) {
    const std::string data = files().contents("/proc/self/status");
    EXPECT_NE(data.find("\nPid:"), std::string::npos);
    EXPECT_TRUE(data.ends_with('\n'));
}

TEST(FileManager, aFileIsReadThroughALink) {
    const TemporaryDirectory directory;
    writeContents(directory / "file", "x");
    fs::create_symlink("file", directory / "link");
    EXPECT_EQ(files().contents(directory / "link"), "x");
}

TEST(FileManager, whatCannotBeReadIsAnErrorThatSaysWhy) {
    const TemporaryDirectory directory;
    expectReadFailure("No such file or directory", directory / "missing");
    expectReadFailure("Is a directory", directory.path().string());
    fs::create_symlink("loop", directory / "loop");
    expectReadFailure("Too many levels of symbolic links", directory / "loop");
    expectReadFailure("File name too long", directory / std::string(256, 'n'));
    expectReadFailure("The path is empty", "");
    expectReadFailure("The path contains a NUL character", std::string("/etc/passwd\0x", 13));
}

TEST(FileManager, aPipeOrDeviceIsNotWaitedFor) {
    const TemporaryDirectory directory;
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    expectReadFailure("Not a regular file", directory / "pipe");
    expectReadFailure("Not a regular file", "/dev/zero");
}

TEST(FileManager, aFileLargerThanTheLimitIsNotRead) {
    const TemporaryDirectory directory;
    writeContents(directory / "huge", "");
    fs::resize_file(directory / "huge", FileManager::maximumContents + 1);
    expectReadFailure("File too large", directory / "huge");
}

TEST(FileManager, whatIsWrittenIsReadBackAndLeavesNothingElse) {
    const TemporaryDirectory directory;
    const std::string data("a\0b\n", 4);
    files().writeAtomically(data, directory / "file");
    EXPECT_EQ(contentsOf(directory / "file"), data);
    files().writeAtomically("", directory / "file");
    EXPECT_EQ(contentsOf(directory / "file"), "");
    const std::string large(5'000'000, 'y');
    files().writeAtomically(large, directory / "file");
    EXPECT_EQ(contentsOf(directory / "file"), large);
    EXPECT_EQ(namesIn(directory.path()), Names{"file"});
}

TEST(FileManager, aReaderOfTheOldFileKeepsItWhole) {
    const TemporaryDirectory directory;
    writeContents(directory / "file", "old contents");
    std::ifstream reader(directory / "file", std::ios::binary);
    EXPECT_EQ(reader.get(), 'o');
    files().writeAtomically("new", directory / "file");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "ld contents");
    EXPECT_EQ(contentsOf(directory / "file"), "new");
}

TEST(FileManager, aNewFileHasTheUsersDefaultPermissions) {
    const TemporaryDirectory directory;
    const mode_t previous = umask(022);
    files().writeAtomically("x", directory / "usual");
    umask(077);
    files().writeAtomically("x", directory / "private");
    // Writing a file does not change the umask of the process.
    EXPECT_EQ(umask(previous), 077U);
    EXPECT_EQ(modeOf(directory / "usual"), 0644U);
    EXPECT_EQ(modeOf(directory / "private"), 0600U);
}

TEST(FileManager, anExistingFileKeepsItsPermissions) {
    const TemporaryDirectory directory;
    for (const mode_t mode : {0600U, 0640U, 0444U, 0777U, 06755U}) {
        writeContents(directory / "file", "old");
        ASSERT_EQ(chmod((directory / "file").c_str(), mode), 0);
        files().writeAtomically("new", directory / "file");
        EXPECT_EQ(modeOf(directory / "file"), mode);
        EXPECT_EQ(contentsOf(directory / "file"), "new");
        fs::remove(directory / "file");
    }
}

TEST(FileManager, anExistingFileKeepsItsOwner) {
    const TemporaryDirectory directory;
    writeContents(directory / "file", "old");
    if (chown((directory / "file").c_str(), 12345, 54321) != 0) {
        GTEST_SKIP() << "only root can change the owner of a file";
    }
    files().writeAtomically("new", directory / "file");
    struct stat status = {};
    ASSERT_EQ(stat((directory / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 54321U);
}

TEST(FileManager, aLinkStaysAndIsWrittenThrough) {
    const TemporaryDirectory directory;
    fs::create_directories(directory / "deep/er");
    writeContents(directory / "deep/file", "old");
    ASSERT_EQ(chmod((directory / "deep/file").c_str(), 0640), 0);
    fs::create_symlink("../file", directory / "deep/er/second");
    fs::create_symlink("deep/er/second", directory / "first");
    fs::create_symlink(directory / "first", directory / "absolute");
    files().writeAtomically("new", directory / "absolute");
    EXPECT_EQ(contentsOf(directory / "deep/file"), "new");
    EXPECT_EQ(modeOf(directory / "deep/file"), 0640U);
    EXPECT_EQ(fs::read_symlink(directory / "absolute"), directory / "first");
    EXPECT_EQ(fs::read_symlink(directory / "first"), "deep/er/second");
    EXPECT_EQ(fs::read_symlink(directory / "deep/er/second"), "../file");
    EXPECT_EQ(namesIn(directory.path()), (Names{"absolute", "deep", "first"}));
    EXPECT_EQ(namesIn(directory / "deep"), (Names{"er", "file"}));
    EXPECT_EQ(namesIn(directory / "deep/er"), Names{"second"});
}

TEST(FileManager, aLinkToNothingCreatesItsTarget) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "elsewhere");
    fs::create_symlink("../second", directory / "elsewhere/first");
    fs::create_symlink("elsewhere/file", directory / "second");
    files().writeAtomically("new", directory / "elsewhere/first");
    EXPECT_EQ(contentsOf(directory / "elsewhere/file"), "new");
    EXPECT_EQ(namesIn(directory.path()), (Names{"elsewhere", "second"}));
    EXPECT_EQ(namesIn(directory / "elsewhere"), (Names{"file", "first"}));
    EXPECT_TRUE(fs::is_symlink(directory / "elsewhere/first"));
    EXPECT_TRUE(fs::is_symlink(directory / "second"));
}

TEST(FileManager, aLoopOfLinksIsAnError) {
    const TemporaryDirectory directory;
    fs::create_symlink("b", directory / "a");
    fs::create_symlink("a", directory / "b");
    expectWriteFailure("Too many levels of symbolic links", directory / "a");
    EXPECT_EQ(namesIn(directory.path()), (Names{"a", "b"}));
}

TEST(FileManager, aLinkIntoAMissingDirectoryIsAnError) {
    const TemporaryDirectory directory;
    fs::create_symlink("missing/file", directory / "link");
    expectWriteFailure("No such file or directory", directory / "link");
    EXPECT_EQ(namesIn(directory.path()), Names{"link"});
}

TEST(FileManager, aDirectoryInTheFilesPlaceIsAnErrorAndStays) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "file");
    expectWriteFailure("Is a directory", directory / "file");
    expectWriteFailure("Is a directory", directory / "file/");
    expectWriteFailure("Is a directory", directory / "file/..");
    fs::create_directory_symlink("file", directory / "link");
    expectWriteFailure("Is a directory", directory / "link");
    EXPECT_EQ(namesIn(directory.path()), (Names{"file", "link"}));
    EXPECT_TRUE(fs::is_empty(directory / "file"));
}

TEST(FileManager, aDeviceIsNeverReplaced) {
    const TemporaryDirectory directory;
    fs::create_symlink("/dev/null", directory / "link");
    expectWriteFailure("Not a regular file", directory / "link");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(FileManager, aPipeIsReplacedWithoutWaiting) {
    const TemporaryDirectory directory;
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    files().writeAtomically("new", directory / "pipe");
    EXPECT_EQ(contentsOf(directory / "pipe"), "new");
}

TEST(FileManager, aMissingDirectoryIsAnError) {
    const TemporaryDirectory directory;
    expectWriteFailure("No such file or directory", directory / "missing/file");
    writeContents(directory / "file", "old");
    expectWriteFailure("Not a directory", directory / "file/below");
    EXPECT_EQ(namesIn(directory.path()), Names{"file"});
}

TEST(FileManager, aNameOfTheGreatestLengthIsWrittenAndALongerOneAnError) {
    const TemporaryDirectory directory;
    const std::string longest(255, 'n');
    files().writeAtomically("one", directory / longest);
    files().writeAtomically("two", directory / longest);
    EXPECT_EQ(contentsOf(directory / longest), "two");
    expectWriteFailure("File name too long", directory / (longest + "n"));
    expectWriteFailure("The path is empty", "");
    expectWriteFailure("The path contains a NUL character", (directory / "a") + std::string("\0b", 2));
    EXPECT_EQ(namesIn(directory.path()), Names{longest});
}

TEST(FileManager, aPathOfTheGreatestLengthIsWritten) {
    const TemporaryDirectory directory;
    std::string path = directory.path().string();
    while (path.size() < 3800) {
        path += '/' + std::string(100, 'd');
    }
    files().createDirectory(path);
    path += '/';
    path += std::string(4095 - path.size(), 'f');
    files().writeAtomically("x", path);
    EXPECT_EQ(files().contents(path), "x");
}

TEST(FileManager, aFullDiskLeavesTheOldFileAndNothingElse) {
    const TemporaryDirectory directory;
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        TestSupport::mountSmallDisk(directory.path().string(), 65536);
        writeContents(directory / "file", "old");
        TestSupport::fillDisk(directory.path().string());
        expectWriteFailure("No space left on device", directory / "file");
        EXPECT_EQ(contentsOf(directory / "file"), "old");
        EXPECT_EQ(namesIn(directory.path()), (Names{"file", "filler"}));
    });
}

TEST(FileManager, aDiskThatFillsHalfWayLeavesTheOldFileAndNothingElse) {
    const TemporaryDirectory directory;
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        TestSupport::mountSmallDisk(directory.path().string(), 262144);
        writeContents(directory / "file", "old");
        expectWriteFailure("No space left on device", directory / "file", std::string(1'000'000, 'x'));
        EXPECT_EQ(contentsOf(directory / "file"), "old");
        EXPECT_EQ(namesIn(directory.path()), Names{"file"});
        files().writeAtomically(std::string(100'000, 'x'), directory / "file");
    });
}

TEST(FileManager, aReadOnlyDiskLeavesTheOldFileAndNothingElse) {
    const TemporaryDirectory directory;
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        TestSupport::mountSmallDisk(directory.path().string(), 65536);
        writeContents(directory / "file", "old");
        fs::create_directory(directory / "directory");
        TestSupport::makeReadOnly(directory.path().string());
        expectWriteFailure("Read-only file system", directory / "file");
        EXPECT_EQ(contentsOf(directory / "file"), "old");
        EXPECT_EQ(namesIn(directory.path()), (Names{"directory", "file"}));
        files().createDirectory(directory / "directory");
        expectCreationFailure("Read-only file system", directory / "directory/inner");
    });
}

TEST(FileManager, aFileSizeLimitLeavesTheOldFileAndNothingElse) {
    // The write() call that exceeds the file size limit writes only a part of the data. The next call fails.
    const TemporaryDirectory directory;
    writeContents(directory / "file", "old");
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        ASSERT_NE(signal(SIGXFSZ, SIG_IGN), SIG_ERR);
        const rlimit limit = {.rlim_cur = 1000, .rlim_max = 1000};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        expectWriteFailure("File too large", directory / "file", std::string(5000, 'x'));
    });
    EXPECT_EQ(contentsOf(directory / "file"), "old");
    EXPECT_EQ(namesIn(directory.path()), Names{"file"});
}

TEST(FileManager, deletesTheTemporaryFilesOfKilledProcesses) {
    const TemporaryDirectory directory;
    const Names others = {".keyloft-temporary", ".temporary-1", "keyloft-temporary-1"};
    for (const std::string& name : others) {
        writeContents(directory / name, "");
    }
    writeContents(directory / ".keyloft-temporary-1", "abandoned");
    writeContents(directory / ".keyloft-temporary-18446744073709551615", "");
    Names expected = others;
    expected.insert("file");
    files().writeAtomically("x", directory / "file");
    EXPECT_EQ(namesIn(directory.path()), expected);
}

TEST(FileManager, keepsTheTemporaryFileThatAnotherProcessIsWriting) {
    const TemporaryDirectory directory;
    writeContents(directory / ".keyloft-temporary-1", "");
    {
        const Platform::Descriptor other(open((directory / ".keyloft-temporary-1").c_str(), O_RDONLY));
        ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
        files().writeAtomically("x", directory / "file");
        EXPECT_EQ(namesIn(directory.path()), (Names{".keyloft-temporary-1", "file"}));
    }
    files().writeAtomically("y", directory / "file");
    EXPECT_EQ(namesIn(directory.path()), Names{"file"});
}

TEST(FileManager, processesThatWriteToOneDirectoryDoNotDisturbEachOther) {
    static constexpr int writes = 2000;
    const TemporaryDirectory directory;
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        // Use an in-memory file system, which flushes files immediately. On a disk, the processes would spend
        // most of the time in fsync(), and the other steps of their writes would rarely overlap.
        TestSupport::mountSmallDisk(directory.path().string(), 1 << 20);
        const auto writeOften = [&](const std::string& name) {
            for (int i = 0; i < writes; ++i) {
                files().writeAtomically(name, directory / name);
            }
        };
        const pid_t child = fork();
        if (child == 0) {
            _exit(failureOf([&] { writeOften("child"); }) ? 1 : 0);
        }
        EXPECT_FALSE(failureOf([&] { writeOften("parent"); }));
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(namesIn(directory.path()), (Names{"child", "parent"}));
    });
}

TEST(FileManager, noDescriptorIsLeftOpen) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "directory");
    fs::create_symlink("loop", directory / "loop");
    const auto work = [&] {
        files().writeAtomically("x", directory / "file");
        std::ignore = files().contents(directory / "file");
        for (const char* name : {"directory", "loop", "missing/file"}) {
            EXPECT_TRUE(failureOf([&] { files().writeAtomically("x", directory / name); }));
            EXPECT_TRUE(failureOf([&] { std::ignore = files().contents(directory / name); }));
        }
    };
    work();
    const std::size_t before = namesIn("/proc/self/fd").size();
    work();
    EXPECT_EQ(namesIn("/proc/self/fd").size(), before);
}

} // namespace
