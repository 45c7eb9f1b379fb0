#include "Tests/Keyloft/AppDelegateTest.h"

#include <set>

using namespace Platform;
using TestSupport::hasFocus;
using TestSupport::pressKey;
using TestSupport::runUntil;

namespace {

struct Layout {
    const char* name;
    unsigned keycodeOfZ;
};

/// Tests the key equivalents of the main menu on keyboard layouts that have the same characters on different
/// keys.
class KeyboardLayoutTest : public AppDelegateTest, public testing::WithParamInterface<Layout> {
protected:
    KeyboardLayoutTest()
        : layout(GetParam().name, GetParam().keycodeOfZ)
        , menu(delegate->buildMainMenu()) {
        delegate->menuNeedsUpdate(*delegate->bookmarksMenu());
    }

    std::vector<std::shared_ptr<MenuItem>> itemsWithKeys() const {
        std::vector<std::shared_ptr<MenuItem>> items;
        for (const auto& top : menu->items()) {
            for (const auto& item : top->submenu()->items()) {
                if (!item->keyEquivalent().empty()) {
                    items.push_back(item);
                }
            }
        }
        return items;
    }

    /// Presses the key equivalent of each menu item with the action `action`, and waits until `isDone`
    /// returns true.
    void press(Action action, const std::function<bool()>& isDone) {
        for (const auto& item : itemsWithKeys()) {
            if (item->action() == action) {
                TestSupport::pressKeyEquivalent(*item);
                EXPECT_TRUE(runUntil([&] { return isDone(); })) << item->title();
            }
        }
        pressed.insert(action);
    }

    TestSupport::KeyboardLayout layout;
    std::shared_ptr<Menu> menu;
    std::set<Action> pressed;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Of, KeyboardLayoutTest,
                         testing::Values(Layout{"us", 52}, Layout{"de", 29}, Layout{"fr", 25}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_P(KeyboardLayoutTest, everyKeyEquivalentCanBeTyped) {
    server.route("/endless", unfinishedPage("endless"));
    const auto tab = launch();
    TestSupport::activate(*tab->window());
    ASSERT_TRUE(loadPage(tab, "/one"));
    ASSERT_TRUE(loadPage(tab, "/two"));
    press(BrowserAction::toggleBookmark, [&] { return tab->isBookmarked(); });
    press(BrowserAction::reload, [&] { return server.count("/two") == 2 && !tab->webView()->isLoading(); });
    press(BrowserAction::goBack, [&] { return waitForTitle(tab, "/one") && tab->webView()->canGoForward(); });
    press(BrowserAction::goForward, [&] { return waitForTitle(tab, "/two"); });
    tab->load(serverURL("/endless"));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "endless"; }));
    press(BrowserAction::stopLoading, [&] { return !tab->webView()->isLoading(); });

    TextField& field = *tab->addressField();
    const auto address = server.url("/endless");
    press(BrowserAction::focusAddressBar, [&] { return TestSupport::selectedText(field) == address; });
    press(StandardAction::cut, [&] { return field.stringValue().empty(); });
    press(StandardAction::paste, [&] { return field.stringValue() == address; });
    press(StandardAction::undo, [&] { return field.stringValue() != address; });
    press(StandardAction::redo, [&] { return field.stringValue() == address; });
    press(StandardAction::selectAll, [&] { return TestSupport::selectedText(field) == address; });
    pressKey("Home");
    pressKey("shift+Right");
    press(StandardAction::copy, [&] { return TestSupport::selectedText(field) == address.substr(0, 1); });
    pressKey("End");
    press(StandardAction::paste, [&] { return field.stringValue() == address + address.front(); });

    for (std::size_t count = 2; count <= 3; ++count) {
        press(BrowserAction::newTab, [&] {
            return controllers().size() == count && hasFocus(*controllers().back()->addressField());
        });
    }
    const auto isSelected = [&](std::size_t index) {
        return TestSupport::isSelectedTab(*controllers()[index]->window());
    };
    ASSERT_TRUE(isSelected(2));
    press(StandardAction::selectPreviousTab, [&] { return isSelected(1); });
    press(StandardAction::selectNextTab, [&] { return isSelected(2); });
    for (const Action action : {StandardAction::hide, StandardAction::performMiniaturize}) {
        press(action, [&] { return !TestSupport::isActive(*tab->window()); });
        TestSupport::activate(*controllers()[2]->window());
    }
    press(StandardAction::performClose, [&] { return controllers().size() == 2; });

    // The key equivalents of these actions are not pressed, because `terminate` would end the test program
    // and `hideOtherApplications` is never enabled on Linux.
    pressed.insert({StandardAction::terminate, StandardAction::hideOtherApplications});
    for (const auto& item : itemsWithKeys()) {
        EXPECT_TRUE(pressed.contains(item->action().value_or(BrowserAction::newTab))) << item->title();
    }
}
