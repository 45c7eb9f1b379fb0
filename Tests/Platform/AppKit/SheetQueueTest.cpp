#include "Platform/AppKit/SheetQueue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Platform::Tests {

namespace {

using Log = std::vector<std::string>;

/// Fixture that acts as the presenter of a `SheetQueue`. Logs the calls to the presenter and to the
/// completion handlers.
class SheetQueueTest : public ::testing::Test, public SheetPresenter {
public:
    bool showSheet(const Alert& alert) override {
        if (canShow) {
            log.push_back("show " + alert.messageText);
        }
        return canShow;
    }

    void hideSheet() override { log.emplace_back("hide"); }

protected:
    void add(const std::string& name, std::vector<std::string> buttons = {"OK", "Cancel"}) {
        queue.add({.messageText = name, .informativeText = "", .buttonTitles = std::move(buttons)},
                  [this, name](std::size_t button) { log.push_back(name + " " + std::to_string(button)); });
    }

    Log log;
    bool canShow = true;
    SheetQueue queue{*this};
};

} // namespace

TEST_F(SheetQueueTest, showsOneSheetAfterTheOther) {
    add("a");
    add("b");
    EXPECT_EQ(log, (Log{"show a"}));
    queue.answer(0);
    queue.answer(1);
    EXPECT_EQ(log, (Log{"show a", "hide", "show b", "a 0", "hide", "b 1"}));
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(SheetQueueTest, keepsASheetUntilTheWindowCanShowIt) {
    canShow = false;
    add("a");
    queue.answer(0);
    EXPECT_EQ(log, Log{});
    canShow = true;
    queue.showFirst();
    queue.showFirst();
    EXPECT_EQ(log, (Log{"show a"}));
}

TEST_F(SheetQueueTest, givesTheSafeAnswersWhenItCloses) {
    add("a", {"OK", "Other", "Cancel"});
    add("b");
    queue.close();
    EXPECT_EQ(log, (Log{"show a", "hide", "a 2", "b 1"}));
    queue.answer(0);
    queue.close();
    EXPECT_EQ(log.size(), 4U);
}

TEST_F(SheetQueueTest, hidesNothingWhenItClosesBeforeTheWindowCanShowASheet) {
    canShow = false;
    add("a");
    queue.close();
    EXPECT_EQ(log, (Log{"a 1"}));
}

TEST_F(SheetQueueTest, answersAtOnceOnceItIsClosed) {
    queue.close();
    add("a");
    EXPECT_EQ(log, (Log{"a 1"}));
}

TEST_F(SheetQueueTest, showsASheetThatACompletionAddsLast) {
    queue.add({.messageText = "a", .informativeText = ""}, [this](std::size_t /*button*/) { add("c"); });
    add("b");
    queue.answer(0);
    EXPECT_EQ(log, (Log{"show a", "hide", "show b"}));
    queue.answer(0);
    EXPECT_EQ(log, (Log{"show a", "hide", "show b", "hide", "show c", "b 0"}));
}

TEST_F(SheetQueueTest, needsNoCompletion) {
    queue.add({}, nullptr);
    queue.answer(0);
    queue.add({}, nullptr);
    queue.close();
    queue.add({}, nullptr);
    EXPECT_TRUE(queue.isEmpty());
}

TEST(Alert, answersEscapeWithCancelOrTheLastButton) {
    EXPECT_EQ((Alert{.messageText = "", .informativeText = "", .buttonTitles = {"OK", "Cancel", "Help"}})
                  .escapeButton(),
              1U);
    EXPECT_EQ((Alert{.messageText = "", .informativeText = "", .buttonTitles = {"Yes", "No"}}).escapeButton(),
              1U);
    EXPECT_EQ(Alert().escapeButton(), 0U);
}

} // namespace Platform::Tests
