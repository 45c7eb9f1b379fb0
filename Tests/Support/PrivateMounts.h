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

/// The result of the child process of `inPrivateMounts`.
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

/// Moves this process into a new mount namespace and the namespaces `others` (CLONE_NEW… flags), within a new
/// user namespace if the kernel requires it. The user and group ids stay the same, so processes outside see
/// the same user. Returns false if the kernel does not allow it.
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

/// Runs `body` with its expectations in a child process whose mounts no other process sees. Tests use full
/// and read-only disks because these make writes fail even for root.
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

/// Mounts a disk with a capacity of `bytes` at `directory`.
inline void mountSmallDisk(const std::string& directory, int bytes) {
    const std::string options = "size=" + std::to_string(bytes);
    ASSERT_EQ(mount("none", directory.c_str(), "tmpfs", 0, options.c_str()), 0);
}

inline void makeReadOnly(const std::string& directory) {
    ASSERT_EQ(mount("none", directory.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
}

/// Fills the disk at `directory` with a file "filler", and checks that nothing more fits.
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

/// Runs a function in private mounts, or skips the test if the kernel does not allow them.
#define KEYLOFT_IN_PRIVATE_MOUNTS(...)                                                                       \
    do {                                                                                                     \
        const auto keyloftResult = TestSupport::inPrivateMounts(__VA_ARGS__);                                \
        if (keyloftResult == TestSupport::PrivateMountsResult::notAllowed) {                                 \
            GTEST_SKIP() << "this system lets tests have no mount namespace of their own";                   \
        }                                                                                                    \
        ASSERT_EQ(keyloftResult, TestSupport::PrivateMountsResult::passed);                                  \
    } while (false)
