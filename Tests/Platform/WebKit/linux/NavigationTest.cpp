#include "Platform/WebKit/linux/Navigation.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using Platform::Error;
using Platform::LoadTimeout;
using Platform::Navigation;
using Platform::Timer;
using Platform::URL;

class NavigationTest : public testing::Test {
protected:
    static Navigation::Load load(const std::string& uri) {
        return {uri, LoadTimeout(0, [] {})};
    }

    static Error cancellation(const std::string& url) {
        return {.domain = std::string(Error::urlDomain),
                .code = Error::urlCancelled,
                .localizedDescription = "cancelled",
                .failingURL = url};
    }

    static Error interruption(const std::string& url) {
        return {.domain = std::string(Error::webKitDomain),
                .code = Error::webKitFrameLoadInterrupted,
                .localizedDescription = "interrupted",
                .failingURL = url};
    }

    std::string requested() {
        const auto* load = navigation.load();
        return load ? load->uri : "none";
    }

    std::optional<URL> shown = URL::fromString("http://shown.example/");
    std::optional<URL> next = URL::fromString("http://next.example/");
    Navigation navigation;
};

TEST_F(NavigationTest, isFreshUntilItIsUsed) {
    EXPECT_TRUE(navigation.isFresh());
    navigation.end();
    navigation.abandon();
    EXPECT_TRUE(navigation.isFresh());
    navigation.use();
    EXPECT_FALSE(navigation.isFresh());
}

TEST_F(NavigationTest, ofANewWindowIsSoUntilItIsUsed) {
    navigation.openWindow();
    EXPECT_TRUE(navigation.isNewWindow());
    EXPECT_FALSE(navigation.isFresh());
    navigation.use();
    EXPECT_FALSE(navigation.isNewWindow());
}

TEST_F(NavigationTest, passesThroughItsPhases) {
    navigation.request(load("a"), shown);
    EXPECT_TRUE(navigation.isRequested());
    navigation.decide();
    EXPECT_FALSE(navigation.isRequested());
    EXPECT_FALSE(navigation.hasStarted());
    EXPECT_TRUE(navigation.start(next));
    EXPECT_TRUE(navigation.hasStarted());
    EXPECT_EQ(requested(), "a");
    navigation.commit();
    EXPECT_FALSE(navigation.hasStarted());
    EXPECT_EQ(requested(), "none");
}

TEST_F(NavigationTest, knowsWhatIsShownUntilItCommits) {
    navigation.request(load("a"), shown);
    EXPECT_EQ(navigation.shownURL(next), shown);
    navigation.request(load("b"), next);
    EXPECT_EQ(navigation.shownURL(next), shown) << "the page has not changed meanwhile";
    navigation.decide();
    navigation.start(next);
    EXPECT_EQ(navigation.shownURL(next), shown);
    navigation.commit();
    EXPECT_EQ(navigation.shownURL(next), next);
}

TEST_F(NavigationTest, ofAPageItselfBeginsWithItsStart) {
    EXPECT_TRUE(navigation.start(shown));
    EXPECT_TRUE(navigation.hasStarted());
    EXPECT_EQ(navigation.shownURL(next), shown);
}

TEST_F(NavigationTest, isNotStartedByTheOneBefore) {
    navigation.request(load("a"), shown);
    EXPECT_FALSE(navigation.start(next));
    EXPECT_TRUE(navigation.isRequested());
    EXPECT_EQ(requested(), "a");
}

TEST_F(NavigationTest, withoutAURLIsStartedWithoutAQuestion) {
    navigation.request(std::nullopt, shown);
    EXPECT_TRUE(navigation.start(next));
    EXPECT_TRUE(navigation.hasStarted());
}

TEST_F(NavigationTest, isNoLoadAnyMoreOnceThePageGoesElsewhere) {
    navigation.request(load("a"), shown);
    navigation.decide();
    navigation.start(next);
    navigation.start(next);
    EXPECT_EQ(requested(), "none");
    EXPECT_TRUE(navigation.hasStarted());
    EXPECT_EQ(navigation.shownURL(next), shown);
}

TEST_F(NavigationTest, forgetsWhatIsShownWhenTheOneBeforeCommits) {
    navigation.request(load("a"), shown);
    navigation.commit();
    EXPECT_TRUE(navigation.isRequested());
    EXPECT_EQ(navigation.shownURL(next), std::nullopt);
}

TEST_F(NavigationTest, isStoppedByItsURIOnly) {
    navigation.request(load("a"), shown);
    EXPECT_FALSE(navigation.isStopped("a"));
    navigation.stop("a");
    EXPECT_TRUE(navigation.isStopped("a"));
    EXPECT_FALSE(navigation.isStopped("b"));
    navigation.request(load("a"), shown);
    EXPECT_FALSE(navigation.isStopped("a"));
}

TEST_F(NavigationTest, thatTheEngineHasAskedAboutIsStoppedByTheEngine) {
    navigation.request(load("a"), shown);
    navigation.decide();
    navigation.stop("a");
    EXPECT_FALSE(navigation.isStopped("a"));
}

TEST_F(NavigationTest, namesACancellationAfterTheTimeOutOnce) {
    EXPECT_EQ(navigation.nameFailure(cancellation("a")), cancellation("a"));
    navigation.start(shown);
    ASSERT_NE(navigation.expectedFailure(), nullptr);
    navigation.expectedFailure()->cancellation = Timer::scheduled(60, false, [] {});
    // WebKitGTK reports that loading has ended before it reports the failure, so `end` must not discard the
    // expected failure.
    navigation.end();
    EXPECT_EQ(navigation.nameFailure(interruption("a")), interruption("a"));
    EXPECT_EQ(navigation.nameFailure(cancellation("a")).code, Error::urlTimedOut);
    EXPECT_EQ(navigation.nameFailure(cancellation("a")), cancellation("a"));
}

TEST_F(NavigationTest, namesARefusedRedirectOnce) {
    navigation.start(shown);
    navigation.expectedFailure()->refusedRedirect = "b";
    EXPECT_EQ(navigation.nameFailure(interruption("b")).code, Error::webKitRestrictedPort);
    EXPECT_EQ(navigation.nameFailure(interruption("b")), interruption("b"));
    navigation.expectedFailure()->refusedRedirect = "b";
    EXPECT_EQ(navigation.nameFailure(interruption("c")), interruption("c"));
}

TEST_F(NavigationTest, expectsNoFailureOfTheOneBefore) {
    navigation.start(shown);
    navigation.expectedFailure()->cancellation = Timer::scheduled(60, false, [] {});
    navigation.request(load("a"), shown);
    EXPECT_EQ(navigation.expectedFailure(), nullptr);
    EXPECT_EQ(navigation.nameFailure(cancellation("b")), cancellation("b"));
}

TEST_F(NavigationTest, thatWasAbandonedExpectsNoFailure) {
    navigation.start(shown);
    navigation.expectedFailure()->refusedRedirect = "b";
    navigation.abandon();
    EXPECT_FALSE(navigation.hasStarted());
    EXPECT_EQ(navigation.nameFailure(interruption("b")), interruption("b"));
}

} // namespace
