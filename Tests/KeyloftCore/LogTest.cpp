#include "KeyloftCore/Log.h"

#include "Tests/Support/CapturedError.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

namespace {

using KeyloftCore::redact;
using TestSupport::CapturedError;

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
    // The family emoji is one character that consists of seven code points.
    EXPECT_EQ(redact("👨‍👩‍👧‍👦bcdefghijklm"), "👨‍👩‍👧‍👦bcdefgh…(13)");
    EXPECT_EQ(redact("e\u0301bcdefghijkl"), "e\u0301bcdefghijkl");
}

} // namespace
