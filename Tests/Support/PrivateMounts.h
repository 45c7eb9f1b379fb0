#pragma once

#include "Tests/Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <string>

namespace TestSupport {

/// The result of `inPrivateMounts`. `notAllowed` means that the kernel does not permit private mounts.
enum class PrivateMountsResult { passed, failed, notAllowed };

namespace Detail {

inline bool writeFile(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    return written;
}

} // namespace Detail

/// Moves this process into a new mount namespace and into new namespaces of the kinds in `others` (CLONE_NEW…
/// flags). Creates a user namespace as well if the kernel requires one. The user and group IDs stay the same,
/// so processes outside see the same user. Returns false if the kernel does not permit the namespaces.
inline bool enterNamespaces(int others = 0) {
    const int kinds = CLONE_NEWNS | others;
    if (unshare(kinds) != 0) {
        const std::string user = std::to_string(getuid());
        const std::string group = std::to_string(getgid());
        if (unshare(CLONE_NEWUSER | kinds) != 0 || !Detail::writeFile("/proc/self/setgroups", "deny") ||
            !Detail::writeFile("/proc/self/uid_map", user + " " + user + " 1") ||
            !Detail::writeFile("/proc/self/gid_map", group + " " + group + " 1")) {
            return false;
        }
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Runs `body`, including its GoogleTest assertions, in a child process with private mounts. Tests mount full
/// and read-only file systems there, because these make writes fail even for root.
inline PrivateMountsResult inPrivateMounts(const std::function<void()>& body) {
    static constexpr int failed = 1;
    static constexpr int notAllowed = 2;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (!enterNamespaces()) {
            _exit(notAllowed);
        }
        body();
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? failed : 0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return PrivateMountsResult::failed;
    }
    return WEXITSTATUS(status) == 0            ? PrivateMountsResult::passed
           : WEXITSTATUS(status) == notAllowed ? PrivateMountsResult::notAllowed
                                               : PrivateMountsResult::failed;
}

/// Mounts an in-memory file system with a capacity of `bytes` at `directory`.
inline void mountSmallDisk(const std::string& directory, int bytes) {
    const std::string options = "size=" + std::to_string(bytes);
    ASSERT_EQ(mount("none", directory.c_str(), "tmpfs", 0, options.c_str()), 0);
}

inline void makeReadOnly(const std::string& directory) {
    ASSERT_EQ(mount("none", directory.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
}

/// Fills the file system at `directory` with a file named "filler", and asserts that nothing else can be
/// written.
inline void fillDisk(const std::string& directory) {
    const int file = open((directory + "/filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    const std::string block(4096, 'x');
    while (write(file, block.data(), block.size()) > 0) {
    }
    ASSERT_EQ(errno, ENOSPC);
    close(file);
    const int probe = open((directory + "/probe").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (probe >= 0) {
        ASSERT_EQ(write(probe, "x", 1), -1);
        ASSERT_EQ(errno, ENOSPC);
        close(probe);
        ASSERT_EQ(unlink((directory + "/probe").c_str()), 0);
    } else {
        ASSERT_EQ(errno, ENOSPC);
    }
}

} // namespace TestSupport

/// Runs a function with `inPrivateMounts`, or skips the test if the kernel does not permit private mounts.
#define KEYLOFT_IN_PRIVATE_MOUNTS(...)                                                                       \
    do {                                                                                                     \
        const auto keyloftResult = TestSupport::inPrivateMounts(__VA_ARGS__);                                \
        if (keyloftResult == TestSupport::PrivateMountsResult::notAllowed) {                                 \
            GTEST_SKIP() << "this system does not allow a mount namespace";                                  \
        }                                                                                                    \
        ASSERT_EQ(keyloftResult, TestSupport::PrivateMountsResult::passed);                                  \
    } while (false)
