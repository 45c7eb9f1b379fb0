#include "KeyloftCore/Log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

namespace {

using KeyloftCore::redact;

/// Standard error for the length of a test: a packet socket, so that each write stays apart.
class CapturedError {
public:
    CapturedError()
        : saved_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends_.data()), 0);
        dup2(ends_[1], STDERR_FILENO);
        close(ends_[1]);
    }
    CapturedError(const CapturedError&) = delete;
    CapturedError& operator=(const CapturedError&) = delete;
    ~CapturedError() {
        dup2(saved_, STDERR_FILENO);
        close(saved_);
        if (ends_[0] >= 0) {
            close(ends_[0]);
        }
    }

    std::string nextWrite() const {
        std::string packet(65'536, '\0');
        const auto count = recv(ends_[0], packet.data(), packet.size(), MSG_DONTWAIT);
        packet.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return packet;
    }

    void hangUp() { close(std::exchange(ends_[0], -1)); }

private:
    int saved_;
    std::array<int, 2> ends_ = {-1, -1};
};

TEST(Log, writesTheMessageAndALineFeedInOneWrite) {
    const CapturedError error;
    KeyloftCore::log("x");
    KeyloftCore::log("");
    KeyloftCore::log("größer – 日本\nsecond line");
    EXPECT_EQ(error.nextWrite(), "x\n");
    EXPECT_EQ(error.nextWrite(), "\n");
    EXPECT_EQ(error.nextWrite(), "größer – 日本\nsecond line\n");
    EXPECT_EQ(error.nextWrite(), "");
}

TEST(Log, linesOfManyThreadsStayWhole) {
    const CapturedError error;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (char letter = 'a'; letter < 'e'; ++letter) {
        threads.emplace_back([letter] {
            for (int turn = 0; turn < 10; ++turn) {
                KeyloftCore::log(std::string(100, letter));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (int line = 0; line < 40; ++line) {
        const auto write = error.nextWrite();
        ASSERT_EQ(write.size(), 101U);
        EXPECT_EQ(write, std::string(100, write[0]) + "\n");
    }
}

TEST(Log, anErrorOutputThatNobodyReadsIsNoFailure) {
    CapturedError error;
    error.hangUp();
    KeyloftCore::log("to nobody");
}

TEST(Log, aPipeThatNobodyReadsIsNoFailureEither) {
    const CapturedError restoresItAfterwards;
    std::array<int, 2> ends = {};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    close(ends[1]);
    ASSERT_NE(signal(SIGPIPE, SIG_DFL), SIG_ERR);
    KeyloftCore::log("to nobody");
}

TEST(Redact, keepsUpToTwelveCharacters) {
    EXPECT_EQ(redact(""), "");
    EXPECT_EQ(redact("abcdefghijkl"), "abcdefghijkl");
    EXPECT_EQ(redact("äöüäöüäöüäöü"), "äöüäöüäöüäöü");
}

TEST(Redact, cutsALongerValueToItsBeginningAndItsLength) {
    EXPECT_EQ(redact("abcdefghijklm"), "abcdefgh…(13)");
    EXPECT_EQ(redact(std::string(2048, 's')), "ssssssss…(2048)");
}

TEST(Redact, countsCharactersAndNotBytes) {
    EXPECT_EQ(redact("ábcdefghijkl"), "ábcdefghijkl");
    EXPECT_EQ(redact("ábcdefghijklm"), "ábcdefgh…(13)");
    // A family is one character, of seven code points.
    EXPECT_EQ(redact("👨‍👩‍👧‍👦bcdefghijklm"), "👨‍👩‍👧‍👦bcdefgh…(13)");
    EXPECT_EQ(redact("e\u0301bcdefghijkl"), "e\u0301bcdefghijkl");
}

} // namespace
