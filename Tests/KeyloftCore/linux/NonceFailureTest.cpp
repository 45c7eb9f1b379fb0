#include "KeyloftCore/RelayTarget.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/random.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <iterator>

namespace {

using KeyloftCore::RelayTarget;

/// Makes all subsequent calls to `getrandom` in this process fail, even if the process runs as root.
void loseRandomSource() {
    sock_filter instructions[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_getrandom, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{.len = std::size(instructions), .filter = instructions};
    char byte = 0;
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0 || getrandom(&byte, 1, 0) != -1) {
        std::cerr << "the random source cannot be disabled\n";
        std::exit(1);
    }
}

TEST(RelayTargetDeathTest, mintingANonceStopsTheProcessIfTheRandomSourceFails) {
    EXPECT_DEATH(
        {
            loseRandomSource();
            RelayTarget::mintNonce();
        },
        "the system's random source failed");
}

} // namespace
