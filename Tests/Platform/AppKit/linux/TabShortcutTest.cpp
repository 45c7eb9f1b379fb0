#include "Tests/Platform/AppKit/linux/AppKitFixture.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/linux/Xdotool.h"

#include <string>
#include <vector>

namespace Platform::Tests {

using TestSupport::runUntil;

namespace {

/// Opens three tabs, each with a text field. The second tab is selected, and its text field has the focus.
class TabShortcutTest : public AppKitTest {
protected:
    TabShortcutTest() {
        TestSupport::startWindowManager();
        for (const char* title : {"first", "second", "third"}) {
            const auto controller = RecordingController::create(title);
            const auto field = TextField::create();
            controller->window()->contentView()->addSubview(field);
            if (!tabs.empty()) {
                tabs.back()->window()->addTabbedWindow(controller->window());
            }
            show(controller->window());
            field->selectText();
            tabs.push_back(controller);
            fields.push_back(field);
        }
        host = TabHost::of(*tabs.front()->window());
        select(1);
        EXPECT_TRUE(runUntil([&] { return gtk_window_is_active(host->toplevel()) == TRUE; }));
    }

    void select(std::size_t index) const { show(tabs[index]->window()); }
    bool isSelected(std::size_t index) const { return host->selectedWindow() == tabs[index]->window(); }

    static void press(const std::string& key) { TestSupport::runXdotool({"key", key}); }

    std::vector<std::shared_ptr<RecordingController>> tabs;
    std::vector<std::shared_ptr<TextField>> fields;
    std::shared_ptr<TabHost> host;
};

} // namespace

TEST_F(TabShortcutTest, controlTabGoesRoundForwards) {
    for (const std::size_t next : {2, 0, 1}) {
        press("ctrl+Tab");
        EXPECT_TRUE(runUntil([&] { return isSelected(next); })) << next;
    }
}

TEST_F(TabShortcutTest, controlShiftTabGoesRoundBackwards) {
    for (const std::size_t next : {0, 2, 1}) {
        press("ctrl+shift+Tab");
        EXPECT_TRUE(runUntil([&] { return isSelected(next); })) << next;
    }
}

TEST_F(TabShortcutTest, everyOtherKeyIsLeftToThePage) {
    const auto order = host->windows();
    for (const char* key :
         {"ctrl+Page_Up", "ctrl+Page_Down", "ctrl+Home", "ctrl+End", "ctrl+shift+Page_Up",
          "ctrl+shift+Page_Down", "ctrl+shift+Home", "ctrl+shift+End", "alt+1", "alt+2", "alt+3", "alt+9",
          "alt+0", "ctrl+KP_Page_Up", "ctrl+KP_Page_Down", "ctrl+KP_Home", "ctrl+KP_End", "alt+KP_1"}) {
        press(key);
        // Key presses are handled in order, so `key` has been handled once the text field contains the "x".
        press("End");
        press("x");
        ASSERT_TRUE(runUntil([&] { return fields[1]->stringValue().ends_with('x'); })) << key;
        fields[1]->setStringValue("");
        EXPECT_TRUE(isSelected(1)) << key;
        EXPECT_EQ(host->windows(), order) << key;
        select(1);
    }
}

} // namespace Platform::Tests
