#include "Platform/Foundation/ObserverList.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using Platform::Observation;
using List = Platform::ObserverList<std::string>;

TEST(ObserverList, notifiesInTheOrderOfAddition) {
    List list;
    std::string calls;
    const Observation first = list.add([&](const std::string& text) { calls += "1" + text; });
    const Observation second = list.add([&](const std::string& text) { calls += "2" + text; });
    list.notify("a");
    list.notify("b");
    EXPECT_EQ(calls, "1a2a1b2b");
}

TEST(ObserverList, endsWithTheToken) {
    List list;
    int calls = 0;
    std::optional<Observation> observation = list.add([&](const std::string&) { ++calls; });
    observation.reset();
    list.notify("");
    EXPECT_EQ(calls, 0);
}

TEST(ObserverList, skipsAnObserverThatAnotherEnds) {
    List list;
    int calls = 0;
    Observation second;
    const Observation first = list.add([&](const std::string&) { second.reset(); });
    second = list.add([&](const std::string&) { ++calls; });
    list.notify("");
    EXPECT_EQ(calls, 0);
}

TEST(ObserverList, letsAnObserverEndItselfAndFinish) {
    List list;
    const auto held = std::make_shared<std::string>("alive");
    std::string seen;
    Observation observation;
    observation = list.add([&, held](const std::string&) {
        observation.reset();
        seen = *held;
    });
    list.notify("");
    list.notify("");
    EXPECT_EQ(seen, "alive");
    EXPECT_EQ(held.use_count(), 1);
}

TEST(ObserverList, callsAnObserverAddedMeanwhileFromTheNextTimeOn) {
    List list;
    int calls = 0;
    std::vector<Observation> added;
    const Observation first = list.add(
        [&](const std::string&) { added.push_back(list.add([&](const std::string&) { ++calls; })); });
    list.notify("");
    EXPECT_EQ(calls, 0);
    list.notify("");
    EXPECT_EQ(calls, 1);
}

TEST(ObserverList, mayBeDestroyedByAnObserver) {
    auto list = std::make_unique<List>();
    int calls = 0;
    Observation second;
    const Observation first = list->add([&](const std::string&) { list.reset(); });
    second = list->add([&](const std::string&) { ++calls; });
    list->notify("");
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(calls, 1);
    second.reset();
}

} // namespace
