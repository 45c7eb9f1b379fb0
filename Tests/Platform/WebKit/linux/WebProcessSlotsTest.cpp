#include "Platform/WebKit/linux/WebProcessSlots.h"

#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace Platform;
using TestSupport::runPending;
using TestSupport::runUntil;

namespace {

using Slots = std::shared_ptr<WebProcessSlots>;

Slots makeSlots(std::size_t limit, Timer::Interval startTimeout = 10) {
    return std::make_shared<WebProcessSlots>(limit, startTimeout);
}

/// A fake view that counts the grants and evictions of its slot.
struct View {
    explicit View(const Slots& slots, bool isVisible = false)
        : slot(std::make_unique<WebProcessSlot>(slots, [this] { return isEvictable; }, [this] { evict(); })) {
        if (isVisible) {
            slot->setVisible(true);
        }
    }

    void request() {
        slot->request([this] { ++grants; });
    }
    void requestAndStart() {
        request();
        slot->processStarted();
    }
    void share(View& opener) {
        slot->share(*opener.slot);
        opener.children.push_back(this);
    }
    void evict() {
        wasEvicting = slot->isEvicting();
        ++evictions;
        slot->release();
        for (auto* child : children) {
            child->evict();
        }
    }

    bool isEvictable = true;
    bool wasEvicting = false;
    int grants = 0;
    int evictions = 0;
    std::unique_ptr<WebProcessSlot> slot;
    std::vector<View*> children;
};

/// Fixture with two hidden views. The web process of the first view is starting, so the second view's request
/// for a slot is pending.
class WaitingView : public ::testing::Test {
protected:
    void SetUp() override {
        first.request();
        second.request();
        runPending();
        ASSERT_EQ(second.grants, 0);
    }

    Slots slots = makeSlots(150);
    View first{slots};
    View second{slots};
};

} // namespace

TEST(WebProcessSlots, grantAtOnceIfNoProcessIsStarting) {
    View view(makeSlots(150));
    view.request();
    EXPECT_EQ(view.grants, 1);
    EXPECT_FALSE(view.slot->isWaiting());
    view.request();
    EXPECT_EQ(view.grants, 2) << "a view does not wait for its own process, even if that has not answered";
}

TEST(WebProcessSlots, grantToHiddenViewsOneAfterTheOther) {
    const auto slots = makeSlots(150);
    View first(slots);
    View second(slots);
    View third(slots);
    for (auto* view : {&first, &second, &third}) {
        view->request();
    }
    runPending();
    EXPECT_EQ(second.grants, 0);
    EXPECT_TRUE(second.slot->isWaiting());
    first.slot->processStarted();
    EXPECT_EQ(second.grants, 0) << "the main loop runs first";
    runPending();
    EXPECT_EQ(second.grants, 1);
    EXPECT_EQ(third.grants, 0);
    second.slot->processStarted();
    runPending();
    EXPECT_EQ(third.grants, 1);
}

TEST(WebProcessSlots, grantToAVisibleViewBesideOneThatStarts) {
    const auto slots = makeSlots(150);
    View hidden(slots);
    hidden.request();
    View visible(slots, true);
    runPending();
    visible.request();
    EXPECT_EQ(visible.grants, 0) << "it may be hidden in the same iteration of the main loop";
    runPending();
    EXPECT_EQ(visible.grants, 1);
    View other(slots, true);
    EXPECT_FALSE(other.slot->tryAcquire()) << "two start already";
    other.request();
    runPending();
    EXPECT_EQ(other.grants, 0);
    visible.slot->processStarted();
    runPending();
    EXPECT_EQ(other.grants, 1);
}

TEST(WebProcessSlots, grantToTwoVisibleViewsAtTheLimit) {
    const auto slots = makeSlots(0);
    View first(slots, true);
    View second(slots, true);
    first.request();
    second.request();
    runPending();
    EXPECT_EQ(first.grants, 1);
    EXPECT_EQ(second.grants, 1);
}

TEST(WebProcessSlots, doNotLetHiddenViewsPassOthers) {
    const auto slots = makeSlots(150);
    View first(slots);
    first.request();
    View hidden(slots);
    hidden.request();
    EXPECT_FALSE(hidden.slot->tryAcquire());
    View seen(slots, true);
    seen.request();
    seen.slot->setVisible(false);
    runPending();
    EXPECT_EQ(hidden.grants, 0);
    EXPECT_EQ(seen.grants, 0);
}

TEST(WebProcessSlots, grantToAViewThatBecomesVisible) {
    const auto slots = makeSlots(150);
    View first(slots);
    View older(slots);
    View newer(slots);
    for (auto* view : {&first, &older, &newer}) {
        view->request();
    }
    runPending();
    newer.slot->setVisible(true);
    runPending();
    EXPECT_EQ(newer.grants, 1);
    EXPECT_EQ(older.grants, 0);
}

TEST(WebProcessSlots, grantWhenAProcessDoesNotAnswerInTime) {
    const auto slots = makeSlots(150, 0.01);
    View first(slots);
    View second(slots);
    first.request();
    second.request();
    EXPECT_TRUE(runUntil([&] { return second.grants == 1; }));
}

TEST(WebProcessSlots, doNotGrantToHiddenViewsAtTheLimit) {
    const auto slots = makeSlots(1);
    View first(slots);
    View second(slots);
    first.requestAndStart();
    second.request();
    runPending();
    EXPECT_EQ(second.grants, 0);
    EXPECT_EQ(first.evictions, 0);
    first.slot->release();
    runPending();
    EXPECT_EQ(second.grants, 1);
}

TEST(WebProcessSlots, evictTheViewLongestOutOfSightAtTheLimit) {
    const auto slots = makeSlots(3);
    View first(slots);
    View second(slots);
    View third(slots);
    for (auto* view : {&third, &second, &first}) {
        view->requestAndStart();
        runPending();
    }
    first.slot->setVisible(true);
    first.slot->setVisible(false);
    View visible(slots, true);
    EXPECT_TRUE(visible.slot->tryAcquire());
    EXPECT_EQ(first.evictions, 0);
    EXPECT_EQ(second.evictions, 1);
    EXPECT_EQ(third.evictions, 0);
    EXPECT_TRUE(second.wasEvicting);
    EXPECT_FALSE(visible.slot->isEvicting());
}

TEST(WebProcessSlots, evictNothingBelowTheLimit) {
    const auto slots = makeSlots(2);
    View hidden(slots);
    hidden.requestAndStart();
    View visible(slots, true);
    EXPECT_TRUE(visible.slot->tryAcquire());
    EXPECT_EQ(hidden.evictions, 0);
}

TEST(WebProcessSlots, exceedTheLimitIfNoViewIsEvictable) {
    const auto slots = makeSlots(2);
    View seen(slots, true);
    seen.requestAndStart();
    View busy(slots);
    busy.isEvictable = false;
    busy.requestAndStart();
    View next(slots, true);
    EXPECT_TRUE(next.slot->tryAcquire());
    EXPECT_EQ(seen.evictions + busy.evictions, 0);
}

TEST(WebProcessSlots, doNotEvictAProcessThatStarts) {
    const auto slots = makeSlots(1);
    View starting(slots);
    starting.request();
    View visible(slots, true);
    EXPECT_TRUE(visible.slot->tryAcquire());
    EXPECT_EQ(starting.evictions, 0);
}

TEST(WebProcessSlots, evictViewsThatShareAProcessTogether) {
    const auto slots = makeSlots(2);
    View opener(slots);
    opener.requestAndStart();
    View child(slots, true);
    child.share(opener);
    View other(slots);
    other.requestAndStart();
    EXPECT_EQ(other.grants, 1) << "two views that share a process count once";
    View visible(slots, true);
    EXPECT_TRUE(visible.slot->tryAcquire());
    EXPECT_EQ(opener.evictions + child.evictions, 0) << "one of the two is visible";
    EXPECT_EQ(other.evictions, 1);
    visible.slot->processStarted();
    child.slot->setVisible(false);
    View next(slots, true);
    EXPECT_TRUE(next.slot->tryAcquire());
    EXPECT_EQ(opener.evictions, 1);
    EXPECT_EQ(child.evictions, 1);
}

TEST(WebProcessSlots, evictASharedProcessByTheLastSightOfItsViews) {
    const auto slots = makeSlots(2);
    View opener(slots);
    opener.requestAndStart();
    View other(slots);
    other.requestAndStart();
    View child(slots);
    child.share(opener);
    View visible(slots, true);
    EXPECT_TRUE(visible.slot->tryAcquire());
    EXPECT_EQ(opener.evictions + child.evictions, 0);
    EXPECT_EQ(other.evictions, 1);
}

TEST(WebProcessSlots, countAViewThatLeftASharedProcess) {
    const auto slots = makeSlots(2);
    View opener(slots);
    opener.requestAndStart();
    View child(slots);
    child.slot->share(*opener.slot);
    child.slot->processReplaced();
    child.slot->processReplaced();
    View visible(slots, true);
    EXPECT_TRUE(visible.slot->tryAcquire());
    EXPECT_EQ(opener.evictions, 1);
    EXPECT_EQ(child.evictions, 0);
}

TEST(WebProcessSlots, keepTheSlotOfAViewThatIsAloneInItsProcess) {
    const auto slots = makeSlots(1);
    View view(slots);
    view.requestAndStart();
    view.slot->processReplaced();
    EXPECT_EQ(view.evictions, 0);
}

TEST_F(WaitingView, isGrantedBeforeANewRequest) {
    first.slot->processStarted();
    View third(slots);
    third.request();
    runPending();
    EXPECT_EQ(second.grants, 1);
    EXPECT_EQ(third.grants, 0);
}

TEST_F(WaitingView, isGrantedOnlyItsLastRequest) {
    int last = 0;
    second.slot->request([&] { ++last; });
    first.slot->processStarted();
    runPending();
    EXPECT_EQ(second.grants, 0);
    EXPECT_EQ(last, 1);
}

TEST_F(WaitingView, isNotGrantedACancelledRequest) {
    second.slot->cancelRequest();
    EXPECT_FALSE(second.slot->isWaiting());
    first.slot->processStarted();
    runPending();
    EXPECT_EQ(second.grants, 0);
}

TEST_F(WaitingView, isGrantedWhenAProcessEndsBeforeItAnswers) {
    first.slot->release();
    runPending();
    EXPECT_EQ(second.grants, 1);
}

TEST_F(WaitingView, isGrantedWhenAnotherIsDestroyed) {
    first.slot.reset();
    runPending();
    EXPECT_EQ(second.grants, 1);
}
