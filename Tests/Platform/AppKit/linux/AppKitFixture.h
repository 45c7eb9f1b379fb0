#pragma once

#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/WindowController.h"
#include "Platform/AppKit/linux/TabHost.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/AppKit/linux/WindowNative.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Platform::Tests {

/// Application-defined actions for the tests.
namespace TestAction {
inline constexpr Action newTab("newTab");
inline constexpr Action navigateFromAddressField("navigateFromAddressField");
inline constexpr Action searchFromSearchField("searchFromSearchField");
inline constexpr Action reload("reload");
inline constexpr Action goBack("goBack");
inline constexpr Action toggleBookmark("toggleBookmark");
inline constexpr Action openBookmark("openBookmark");
} // namespace TestAction

/// A responder that records the actions that it performs.
class Recorder : public Responder {
public:
    bool respondsTo(Action action) const override { return !answers || *answers == action; }
    void perform(Action action, const ActionSender& sender) override {
        performed.push_back(action);
        if (whenPerformed) {
            whenPerformed(sender);
        }
    }
    bool validateMenuItem(MenuItem& /*item*/) override { return valid; }

    std::optional<Action> answers;
    bool valid = true;
    std::vector<Action> performed;
    std::function<void(const ActionSender&)> whenPerformed;
};

/// A window controller that is also the window's delegate. Records the actions that it performs and the
/// titles of windows that close.
class RecordingController : public WindowController, public WindowDelegate {
public:
    static std::shared_ptr<RecordingController> create(const std::string& title);

    bool respondsTo(Action action) const override { return recorder.respondsTo(action); }
    void perform(Action action, const ActionSender& sender) override { recorder.perform(action, sender); }
    bool validateMenuItem(MenuItem& item) override { return recorder.validateMenuItem(item); }
    void windowWillClose(Window& window) override {
        closed.push_back(window.title());
        if (whenClosing) {
            whenClosing();
        }
    }

    Recorder recorder;
    std::vector<std::string> closed;
    std::function<void()> whenClosing;

protected:
    RecordingController()
        : WindowController("RecordingController") {}
};

/// Fixture for tests that open windows on the private display. Closes all windows after each test.
class AppKitTest : public testing::Test {
public:
    AppKitTest(const AppKitTest&) = delete;
    AppKitTest& operator=(const AppKitTest&) = delete;
    ~AppKitTest() override;

protected:
    AppKitTest();

    /// Shows the window and waits until it is visible and has been laid out.
    static void show(const std::shared_ptr<Window>& window);

    /// Returns the widget of the view, or null if the view has no widget yet.
    static GtkWidget* widgetOf(const std::shared_ptr<View>& view);

    static void typeInto(const std::shared_ptr<TextField>& field, const std::string& text);
};

} // namespace Platform::Tests
