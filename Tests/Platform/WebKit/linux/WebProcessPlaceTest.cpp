#include "Platform/WebKit/linux/WebProcessPlace.h"

#include "Tests/Support/Setting.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Platform;
using TestSupport::runPending;
using TestSupport::runUntil;
using TestSupport::Setting;

namespace {

/// A view that only counts.
struct User final : WebProcessUser {
    explicit User(bool visible = false)
        : visible(visible) {}

    bool isVisible() const override { return visible; }
    bool mayGiveWay() const override { return !visible; }
    void giveWay() override {
        ++endings;
        place->leave();
    }

    void begin() {
        place->begin([this] { ++uses; });
    }
    void beginAndStart() {
        begin();
        place->started();
    }

    bool visible = false;
    int uses = 0;
    int endings = 0;
    std::unique_ptr<WebProcessPlace> place = std::make_unique<WebProcessPlace>(*this);
};

} // namespace

TEST(WebProcessPlace, isTakenAtOnceWhenNobodyElseStarts) {
    User user;
    user.begin();
    EXPECT_EQ(user.uses, 1);
    EXPECT_FALSE(user.place->isWaiting());
    user.begin();
    EXPECT_EQ(user.uses, 2)
        << "a process that is there need not be waited for, although it has not answered yet";
}

TEST(WebProcessPlace, isTakenByOneAfterTheOtherOutOfSight) {
    User first;
    User second;
    User third;
    for (auto* user : {&first, &second, &third}) {
        user->begin();
    }
    runPending();
    EXPECT_EQ(second.uses, 0);
    first.place->started();
    EXPECT_EQ(second.uses, 0) << "not before the main loop has nothing else to do";
    runPending();
    EXPECT_EQ(second.uses, 1);
    EXPECT_EQ(third.uses, 0);
    second.place->started();
    runPending();
    EXPECT_EQ(third.uses, 1);
}

TEST(WebProcessPlace, isTakenInTurnByOneThatAsksWhileOthersWait) {
    User first;
    User second;
    first.begin();
    second.begin();
    first.place->started();
    User third;
    third.begin();
    runPending();
    EXPECT_EQ(second.uses, 1);
    EXPECT_EQ(third.uses, 0);
}

TEST(WebProcessPlace, isTakenInSightBesideOneThatStarts) {
    User hidden;
    hidden.begin();
    User seen(true);
    seen.begin();
    EXPECT_TRUE(seen.place->isWaiting());
    seen.place->cutIn();
    EXPECT_EQ(seen.uses, 1);
    seen.place->cutIn();
    EXPECT_EQ(seen.uses, 1);
    User other(true);
    EXPECT_FALSE(other.place->takeNow()) << "two start already";
    other.begin();
    other.place->cutIn();
    EXPECT_EQ(other.uses, 0);
    seen.place->started();
    runPending();
    EXPECT_EQ(other.uses, 1);
}

TEST(WebProcessPlace, isNotTakenOutOfTurnOutOfSight) {
    User first;
    first.begin();
    User hidden;
    hidden.begin();
    hidden.place->cutIn();
    EXPECT_EQ(hidden.uses, 0);
    EXPECT_FALSE(hidden.place->takeNow());
}

TEST(WebProcessPlace, isNextForTheOneInSight) {
    User first;
    User older;
    User newer;
    for (auto* user : {&first, &older, &newer}) {
        user->begin();
    }
    newer.visible = true;
    first.place->started();
    runPending();
    EXPECT_EQ(newer.uses, 1);
    EXPECT_EQ(older.uses, 0);
}

TEST(WebProcessPlace, isWaitedForNoLonger) {
    User first;
    User second;
    first.begin();
    second.begin();
    second.place->stopWaiting();
    EXPECT_FALSE(second.place->isWaiting());
    first.place->started();
    runPending();
    EXPECT_EQ(second.uses, 0);
}

TEST(WebProcessPlace, isFreeWhenItsProcessEndedBeforeItAnswered) {
    User first;
    User second;
    first.begin();
    second.begin();
    first.place->leave();
    runPending();
    EXPECT_EQ(second.uses, 1);
}

TEST(WebProcessPlace, isFreeWhenItsViewIsGone) {
    User first;
    User second;
    first.begin();
    second.begin();
    first.place.reset();
    runPending();
    EXPECT_EQ(second.uses, 1);
}

TEST(WebProcessPlace, isFreeAfterSomeTimeWhenItsProcessDoesNotAnswer) {
    const Setting limit(webProcessStartLimit, 0.01);
    User first;
    User second;
    first.begin();
    second.begin();
    EXPECT_TRUE(runUntil([&] { return second.uses == 1; }));
}

TEST(WebProcessPlace, isNotTakenOutOfSightBeyondTheLimit) {
    const Setting limit(webProcessLimit, 1);
    User first;
    User second;
    first.beginAndStart();
    second.begin();
    runPending();
    EXPECT_EQ(second.uses, 0);
    first.place->leave();
    runPending();
    EXPECT_EQ(second.uses, 1);
}

TEST(WebProcessPlace, longestOutOfSightGivesWayToOneInSight) {
    const Setting limit(webProcessLimit, 3);
    User first;
    User second;
    User third;
    for (auto* user : {&first, &second, &third}) {
        user->beginAndStart();
    }
    first.place->seen();
    User seen(true);
    EXPECT_TRUE(seen.place->takeNow());
    EXPECT_EQ(first.endings, 0);
    EXPECT_EQ(second.endings, 1);
    EXPECT_EQ(third.endings, 0);
}

TEST(WebProcessPlace, thatMayNotGiveWayLetsTheLimitBeExceeded) {
    const Setting limit(webProcessLimit, 1);
    User first(true);
    first.beginAndStart();
    User second(true);
    EXPECT_TRUE(second.place->takeNow());
    EXPECT_EQ(first.endings, 0);
}

TEST(WebProcessPlace, ofAProcessThatStartsGivesNoWay) {
    const Setting limit(webProcessLimit, 1);
    User starting;
    starting.begin();
    User seen(true);
    EXPECT_TRUE(seen.place->takeNow());
    EXPECT_EQ(starting.endings, 0);
}

TEST(WebProcessPlace, thatIsSharedGivesWayAsAWhole) {
    const Setting limit(webProcessLimit, 2);
    User opener;
    opener.beginAndStart();
    User child(true);
    child.place->share(*opener.place);
    User other;
    other.beginAndStart();
    User seen(true);
    EXPECT_TRUE(seen.place->takeNow());
    EXPECT_EQ(opener.endings + child.endings, 0) << "one of the two is in sight";
    EXPECT_EQ(other.endings, 1);
    seen.place->started();
    child.visible = false;
    User next(true);
    EXPECT_TRUE(next.place->takeNow());
    EXPECT_EQ(opener.endings, 1);
    EXPECT_EQ(child.endings, 1);
}

TEST(WebProcessPlace, thatMovedAwayFromASharedProcessHasOneOfItsOwn) {
    const Setting limit(webProcessLimit, 2);
    User opener;
    opener.beginAndStart();
    User child;
    child.place->share(*opener.place);
    child.place->moved();
    child.place->moved();
    User seen(true);
    EXPECT_TRUE(seen.place->takeNow());
    EXPECT_EQ(opener.endings, 1);
    EXPECT_EQ(child.endings, 0);
}
