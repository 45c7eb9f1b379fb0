#include "Platform/Foundation/NotificationCenter.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Platform::Notification;
using Platform::NotificationCenter;
using Platform::NotificationName;
using Platform::Observation;

constexpr NotificationName something{"test.something"};
constexpr NotificationName other{"test.other"};

struct Counter {
    int calls = 0;
    NotificationCenter::Callback callback() {
        return [this](const Notification&) { ++calls; };
    }
};

TEST(NotificationCenter, theDefaultCenterIsOne) {
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
}

TEST(NotificationCenter, aPostIsDeliveredBeforeItReturnsOnThePostingThread) {
    NotificationCenter center;
    const int object = 0;
    std::vector<Notification> received;
    std::thread::id thread;
    const Observation observation =
        center.addObserver(something, &object, [&](const Notification& notification) {
            received.push_back(notification);
            thread = std::this_thread::get_id();
        });
    center.post(something, &object);
    ASSERT_EQ(received.size(), 1U);
    EXPECT_EQ(received.front().name, something);
    EXPECT_EQ(received.front().object, &object);
    EXPECT_EQ(thread, std::this_thread::get_id());

    std::thread([&] {
        center.post(something, &object);
        EXPECT_EQ(thread, std::this_thread::get_id());
    }).join();
}

TEST(NotificationCenter, namesAreToldApart) {
    NotificationCenter center;
    Counter counter;
    const Observation observation = center.addObserver(something, nullptr, counter.callback());
    center.post(other, nullptr);
    EXPECT_EQ(counter.calls, 0);
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 1);
}

TEST(NotificationCenter, objectsAreComparedByIdentity) {
    NotificationCenter center;
    const std::string first = "equal";
    const std::string second = "equal";
    Counter counter;
    const Observation observation = center.addObserver(something, &first, counter.callback());
    center.post(something, &second);
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 0);
    center.post(something, &first);
    EXPECT_EQ(counter.calls, 1);
}

TEST(NotificationCenter, anObserverOfNoObjectHearsOfAll) {
    NotificationCenter center;
    const int object = 0;
    Counter counter;
    const Observation observation = center.addObserver(something, nullptr, counter.callback());
    center.post(something, &object);
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 2);
}

TEST(NotificationCenter, everyObserverIsCalledOnce) {
    NotificationCenter center;
    std::multiset<int> called;
    std::vector<Observation> observations;
    for (int i = 0; i < 5; ++i) {
        observations.push_back(
            center.addObserver(something, nullptr, [&called, i](const auto&) { called.insert(i); }));
    }
    center.post(something, nullptr);
    EXPECT_EQ(called, (std::multiset{0, 1, 2, 3, 4}));
}

TEST(NotificationCenter, aDestroyedTokenEndsTheObservation) {
    NotificationCenter center;
    Counter counter;
    {
        const Observation observation = center.addObserver(something, nullptr, counter.callback());
    }
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 0);
}

TEST(NotificationCenter, aResetTokenEndsTheObservationAndMayBeResetAgain) {
    NotificationCenter center;
    Counter counter;
    Observation observation = center.addObserver(something, nullptr, counter.callback());
    EXPECT_TRUE(observation);
    observation.reset();
    EXPECT_FALSE(observation);
    observation.reset();
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 0);
}

TEST(NotificationCenter, aMovedTokenKeepsTheObservationAndAnOverwrittenOneEndsIt) {
    NotificationCenter center;
    Counter first;
    Counter second;
    Observation held = center.addObserver(something, nullptr, first.callback());
    Observation moved = std::move(held);
    center.post(something, nullptr);
    EXPECT_EQ(first.calls, 1);
    moved = center.addObserver(something, nullptr, second.callback());
    center.post(something, nullptr);
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
}

TEST(NotificationCenter, anObserverMayEndItselfDuringAPost) {
    NotificationCenter center;
    int calls = 0;
    Observation observation;
    // The captures of a callback must stay alive until the callback returns.
    const auto held = std::make_shared<std::string>("held");
    observation = center.addObserver(something, nullptr, [&, copy = held](const Notification&) {
        observation.reset();
        ++calls;
        EXPECT_EQ(*copy, "held");
        EXPECT_EQ(held.use_count(), 2);
    });
    center.post(something, nullptr);
    center.post(something, nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(NotificationCenter, anObservationEndedByAnEarlierObserverIsNotCalledInTheSamePost) {
    NotificationCenter center;
    int calls = 0;
    // Each observer removes the other, so only one of them is called.
    std::array<Observation, 2> observations;
    for (const std::size_t victim : {1U, 0U}) {
        observations.at(1 - victim) =
            center.addObserver(something, nullptr, [&, victim](const Notification&) {
                ++calls;
                observations.at(victim).reset();
            });
    }
    center.post(something, nullptr);
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, anObserverAddedDuringAPostIsCalledFromTheNextOnOn) {
    NotificationCenter center;
    Counter counter;
    std::vector<Observation> added;
    const Observation observation = center.addObserver(something, nullptr, [&](const Notification&) {
        if (added.empty()) {
            added.push_back(center.addObserver(something, nullptr, counter.callback()));
        }
    });
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 0);
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 1);
}

TEST(NotificationCenter, anObserverMayPostAgain) {
    NotificationCenter center;
    Counter counter;
    const Observation inner = center.addObserver(other, nullptr, counter.callback());
    const Observation outer =
        center.addObserver(something, nullptr, [&](const Notification&) { center.post(other, nullptr); });
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 1);
}

TEST(NotificationCenter, aTokenMayOutliveItsCenter) {
    const auto held = std::make_shared<int>(0);
    Observation observation;
    {
        NotificationCenter center;
        observation = center.addObserver(something, nullptr, [held](const Notification&) {});
    }
    EXPECT_TRUE(observation);
    observation.reset();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(NotificationCenter, endingAnObservationReleasesWhatItsCallbackHolds) {
    NotificationCenter center;
    const auto held = std::make_shared<int>(0);
    Observation observation = center.addObserver(something, nullptr, [held](const Notification&) {});
    EXPECT_EQ(held.use_count(), 2);
    observation.reset();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(NotificationCenter, aCallbackMayOwnAnotherToken) {
    NotificationCenter center;
    Counter counter;
    auto inner = std::make_shared<Observation>(center.addObserver(something, nullptr, counter.callback()));
    Observation outer =
        center.addObserver(other, nullptr, [owned = std::move(inner)](const Notification&) {});
    outer.reset();
    center.post(something, nullptr);
    EXPECT_EQ(counter.calls, 0);
}

TEST(NotificationCenter, threadsMayRegisterEndAndPostAtOnce) {
    NotificationCenter center;
    const auto work = [&center] {
        for (int i = 0; i < 500; ++i) {
            int calls = 0;
            Observation observation =
                center.addObserver(something, &calls, [&calls](const Notification&) { ++calls; });
            center.post(something, &calls);
            observation.reset();
            center.post(something, &calls);
            ASSERT_EQ(calls, 1);
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}

} // namespace
