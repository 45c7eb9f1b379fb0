#include "Platform/WebKit/WebProcessRecovery.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>

namespace {

using namespace std::chrono_literals;
using Platform::URL;
using Platform::URLRequest;
using Platform::WebProcessRecovery;
using Cause = WebProcessRecovery::Cause;

class WebProcessRecoveryTest : public testing::Test {
protected:
    void fail(std::optional<URLRequest> interrupted = std::nullopt) {
        recovery.processEnded(Cause::failure, std::move(interrupted), true);
    }

    /// Simulates a load that restores the page after its web process has terminated.
    void comeBack() {
        recovery.navigationRequested();
        recovery.pageReturned();
    }

    WebProcessRecovery::Clock::time_point now{1h};
    WebProcessRecovery recovery{[this] { return now; }};
    URLRequest request{.url = *URL::fromString("https://example.org/")};
};

TEST_F(WebProcessRecoveryTest, hasNothingToDoBeforeAnEnd) {
    EXPECT_FALSE(recovery.isPageGone());
    EXPECT_FALSE(recovery.reloadsWhenVisible());
    EXPECT_EQ(recovery.interrupted(), std::nullopt);
}

TEST_F(WebProcessRecoveryTest, reloadsAPageOnceWhenItIsVisible) {
    fail();
    EXPECT_TRUE(recovery.isPageGone());
    EXPECT_TRUE(recovery.reloadsWhenVisible());
    recovery.navigationRequested();
    EXPECT_TRUE(recovery.isPageGone());
    EXPECT_FALSE(recovery.reloadsWhenVisible());
    recovery.pageReturned();
    EXPECT_FALSE(recovery.isPageGone());
    EXPECT_FALSE(recovery.reloadsWhenVisible());
}

TEST_F(WebProcessRecoveryTest, leavesAnEmptyViewEmpty) {
    recovery.processEnded(Cause::failure, std::nullopt, false);
    EXPECT_TRUE(recovery.isPageGone());
    EXPECT_FALSE(recovery.reloadsWhenVisible());
}

TEST_F(WebProcessRecoveryTest, waitsForTheUserAfterASecondEndWithinAMinute) {
    fail();
    comeBack();
    now += 1min - 1ms;
    fail();
    EXPECT_TRUE(recovery.isPageGone());
    EXPECT_FALSE(recovery.reloadsWhenVisible());
    comeBack();
    now += 1min;
    fail();
    EXPECT_TRUE(recovery.reloadsWhenVisible());
}

TEST_F(WebProcessRecoveryTest, countsTheMinuteFromTheLastEndThatWasNotReloaded) {
    fail();
    comeBack();
    now += 40s;
    fail();
    comeBack();
    now += 40s;
    fail();
    EXPECT_FALSE(recovery.reloadsWhenVisible());
}

TEST_F(WebProcessRecoveryTest, doesNotCountAnEviction) {
    fail();
    comeBack();
    recovery.processEnded(Cause::eviction, std::nullopt, true);
    EXPECT_TRUE(recovery.reloadsWhenVisible());
    comeBack();
    now += 1min;
    recovery.processEnded(Cause::eviction, std::nullopt, true);
    comeBack();
    now += 1s;
    fail();
    EXPECT_TRUE(recovery.reloadsWhenVisible());
}

TEST_F(WebProcessRecoveryTest, keepsTheInterruptedLoadUntilAPageIsBack) {
    fail(request);
    EXPECT_EQ(recovery.interrupted(), request);
    recovery.navigationRequested();
    EXPECT_EQ(recovery.interrupted(), request);
    recovery.pageReturned();
    EXPECT_EQ(recovery.interrupted(), std::nullopt);
}

TEST_F(WebProcessRecoveryTest, forgetsAnEarlierInterruptedLoad) {
    fail(request);
    fail();
    EXPECT_EQ(recovery.interrupted(), std::nullopt);
}

} // namespace
