#include "Platform/Foundation/DiagnosticLog.h"

#include "Tests/Support/EnvironmentVariable.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <ctime>
#include <regex>
#include <string>
#include <string_view>

namespace {

using Platform::diagnosticLog;

std::string logged(std::string_view text) {
    testing::internal::CaptureStderr();
    diagnosticLog(text);
    return testing::internal::GetCapturedStderr();
}

/// Logs `text` and returns the logged line without its prefix and its newline.
std::string message(std::string_view text) {
    const std::string line = logged(text);
    const std::size_t begin = line.find("] ");
    EXPECT_NE(begin, std::string::npos);
    EXPECT_TRUE(line.ends_with('\n'));
    return line.substr(begin + 2, line.size() - begin - 3);
}

TEST(DiagnosticLog, aLineHasTimeProgramAndProcess) {
    const std::regex pattern(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [^ ]+\[)" + std::to_string(getpid()) +
                             R"(\] hello\n)");
    EXPECT_TRUE(std::regex_match(logged("hello"), pattern)) << logged("hello");
}

TEST(DiagnosticLog, aLinesTimeIsTheLocalTimeOfItsWriting) {
    // The time zones are twelve hours apart, so it is always afternoon in one of them.
    for (const char* zone : {"UTC0", "Noon-12"}) {
        const TestSupport::EnvironmentVariable localZone("TZ", zone);
        tzset();
        const std::time_t before = std::time(nullptr);
        const std::string line = logged("hello");
        const std::time_t after = std::time(nullptr);
        tm logged = {};
        ASSERT_NE(strptime(line.c_str(), "%Y-%m-%d %H:%M:%S.", &logged), nullptr);
        const std::time_t time = mktime(&logged);
        EXPECT_GE(time, before);
        EXPECT_LE(time, after);
    }
    tzset();
}

TEST(DiagnosticLog, lineBreaksAndControlsBecomeEscapes) {
    EXPECT_EQ(message("a\nb\r\nc"), "a\\nb\\r\\nc");
    EXPECT_EQ(message("\x1b[2J\x7f"), "\\x1b[2J\\x7f");
    EXPECT_EQ(message("a\xc2\x9b"
                      "b\xc2\xa0"
                      "c"),
              "a\\x9bb\xc2\xa0"
              "c");
    EXPECT_EQ(message("\xc2\x80\xc2\x9f"), "\\x80\\x9f");
    EXPECT_EQ(message("\x1f \xc2\x7f"), "\\x1f \xc2\\x7f");
    EXPECT_EQ(message(std::string_view("a\0b", 3)), "a\\x00b");
}

TEST(DiagnosticLog, otherTextStaysAsItIs) {
    EXPECT_EQ(message("Keyloft: “é” 100% \\ \t %@ %s"), "Keyloft: “é” 100% \\ \t %@ %s");
    EXPECT_EQ(message("\xc2"), "\xc2");
    EXPECT_EQ(message(""), "");
}

TEST(DiagnosticLog, aLineIsOneWrite) {
    // In packet mode (O_DIRECT), a pipe preserves the boundaries between writes.
    std::array<int, 2> ends = {};
    ASSERT_EQ(pipe2(ends.data(), O_DIRECT | O_CLOEXEC | O_NONBLOCK), 0);
    const int saved = dup(STDERR_FILENO);
    ASSERT_EQ(dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
    diagnosticLog("first\nline");
    dup2(saved, STDERR_FILENO);
    std::string packet(4096, '\0');
    const ssize_t length = read(ends[0], packet.data(), packet.size());
    ASSERT_GT(length, 0);
    packet.resize(static_cast<std::size_t>(length));
    EXPECT_TRUE(packet.ends_with("first\\nline\n")) << packet;
    char more = 0;
    EXPECT_EQ(read(ends[0], &more, 1), -1);
    close(saved);
    close(ends[0]);
    close(ends[1]);
}

TEST(DiagnosticLog, aStandardErrorThatNobodyReadsIsNoFailure) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    close(ends[0]);
    const int saved = dup(STDERR_FILENO);
    ASSERT_EQ(dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
    ASSERT_EQ(signal(SIGPIPE, SIG_DFL), SIG_DFL);
    diagnosticLog("unheard");
    dup2(saved, STDERR_FILENO);
    close(ends[1]);
    close(saved);
    sigset_t pending = {};
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    sigset_t blocked = {};
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
}

} // namespace
