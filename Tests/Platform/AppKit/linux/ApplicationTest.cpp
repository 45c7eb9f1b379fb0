#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Tests/Platform/AppKit/linux/AppKitFixture.h"
#include "Tests/Support/Display.h"

#include <algorithm>
#include <string>

namespace Platform::Tests {

using TestSupport::runUntil;

namespace {

/// Fixture for tests that open several top-level windows under a window manager.
class ApplicationTest : public AppKitTest {
protected:
    ApplicationTest() { TestSupport::startWindowManager(); }

    static GtkWindow* toplevelOf(const RecordingController& controller) {
        return TabHost::of(*controller.window())->toplevel();
    }

    static GdkToplevelState stateOf(GtkWindow* toplevel) {
        return gdk_toplevel_get_state(GDK_TOPLEVEL(gtk_native_get_surface(GTK_NATIVE(toplevel))));
    }
    static bool isMinimized(const RecordingController& controller) {
        return (stateOf(toplevelOf(controller)) & GDK_TOPLEVEL_STATE_MINIMIZED) != 0;
    }
    static bool isActive(const RecordingController& controller) {
        return gtk_window_is_active(toplevelOf(controller)) == TRUE;
    }

    static std::shared_ptr<RecordingController> open(const std::string& title) {
        auto controller = RecordingController::create(title);
        controller->recorder.answers = TestAction::reload;
        show(controller->window());
        EXPECT_TRUE(runUntil([&] { return isActive(*controller); })) << title;
        return controller;
    }
    static void use(const RecordingController& controller) {
        controller.window()->makeKeyAndOrderFront();
        EXPECT_TRUE(runUntil([&] { return isActive(controller); }));
    }

    static void perform(Action action) { EXPECT_TRUE(sendAction(action, nullptr, {})); }

    static std::vector<GtkAboutDialog*> aboutPanels() {
        std::vector<GtkAboutDialog*> panels;
        GListModel* toplevels = gtk_window_get_toplevels();
        for (guint i = 0; i < g_list_model_get_n_items(toplevels); ++i) {
            const auto window =
                GObjectPtr<GObject>::adopt(static_cast<GObject*>(g_list_model_get_item(toplevels, i)));
            if (GTK_IS_ABOUT_DIALOG(window.get())) {
                panels.push_back(GTK_ABOUT_DIALOG(window.get()));
            }
        }
        return panels;
    }
};

} // namespace

TEST_F(ApplicationTest, ownsItsWindowsInAProgramWithAnotherDefaultApplication) {
    GApplication* before = g_application_get_default();
    const auto other = GObjectPtr<GApplication>::adopt(g_application_new(nullptr, GApplicationFlags{}));
    g_application_set_default(other.get());
    const auto controller = open("one");
    EXPECT_EQ(gtk_window_get_application(toplevelOf(*controller)), Application::shared().native().gtk());
    g_application_set_default(before);
}

TEST_F(ApplicationTest, hideMinimisesEveryWindowAndShowAllBringsThemBack) {
    const auto a = open("a");
    const auto b = open("b");
    perform(StandardAction::hide);
    EXPECT_TRUE(runUntil([&] { return isMinimized(*a) && isMinimized(*b); }));
    perform(StandardAction::unhideAllApplications);
    EXPECT_TRUE(runUntil([&] { return !isMinimized(*a) && !isMinimized(*b); }));
    // The window that was in front before `hide` is in front again.
    EXPECT_TRUE(runUntil([&] { return isActive(*b); }));
    EXPECT_EQ(Application::shared().mainWindow(), b->window());
}

TEST_F(ApplicationTest, bringAllToFrontPresentsEveryWindowTheFrontOneLast) {
    const auto a = open("a");
    const auto b = open("b");
    const auto c = open("c");
    use(*a);
    gtk_window_minimize(toplevelOf(*b));
    ASSERT_TRUE(runUntil([&] { return isMinimized(*b); }));
    perform(StandardAction::arrangeInFront);
    EXPECT_TRUE(runUntil([&] { return !isMinimized(*b) && isActive(*a); }));
    EXPECT_EQ(Application::shared().mainWindow(), a->window());
}

TEST_F(ApplicationTest, theMainWindowIsTheOneUsedLastAlsoOnceTheFrontOneIsGone) {
    const auto a = open("a");
    const auto b = open("b");
    const auto c = open("c");
    use(*a);
    use(*c);
    c->window()->close();
    EXPECT_EQ(Application::shared().mainWindow(), a->window());
}

TEST_F(ApplicationTest, minimiseAndZoomActOnTheTopLevel) {
    const auto first = open("first");
    const auto second = RecordingController::create("second");
    first->window()->addTabbedWindow(second->window());
    for (const bool isMaximized : {true, false}) {
        perform(StandardAction::performZoom);
        EXPECT_TRUE(
            runUntil([&] { return (gtk_window_is_maximized(toplevelOf(*first)) == TRUE) == isMaximized; }));
    }
    perform(StandardAction::performMiniaturize);
    EXPECT_TRUE(runUntil([&] { return isMinimized(*first); }));
}

TEST_F(ApplicationTest, hideOthersIsTheOnlyItemOfItsOwnThatIsGrey) {
    for (const Action action :
         {StandardAction::orderFrontStandardAboutPanel, StandardAction::hide,
          StandardAction::unhideAllApplications, StandardAction::terminate, StandardAction::arrangeInFront}) {
        const auto item = MenuItem::create("", action);
        EXPECT_TRUE(Application::shared().respondsTo(action));
        EXPECT_TRUE(Application::shared().validateMenuItem(*item)) << action.name();
    }
    const auto item = MenuItem::create("", StandardAction::hideOtherApplications);
    EXPECT_FALSE(Application::shared().validateMenuItem(*item));
}

TEST_F(ApplicationTest, theAboutPanelNamesProgramVersionAndLicence) {
    const auto window = open("a");
    perform(StandardAction::orderFrontStandardAboutPanel);
    ASSERT_EQ(aboutPanels().size(), 1U);
    GtkAboutDialog* panel = aboutPanels().front();
    EXPECT_STREQ(gtk_about_dialog_get_program_name(panel), "AppKit Tests");
    EXPECT_STREQ(gtk_about_dialog_get_version(panel), "1.2.3");
    EXPECT_STREQ(gtk_about_dialog_get_comments(panel), "Tests of windows and controls");
    EXPECT_EQ(gtk_about_dialog_get_license_type(panel), GTK_LICENSE_MIT_X11);
    EXPECT_STREQ(gtk_about_dialog_get_copyright(panel), "Copyright of the tests");
    EXPECT_TRUE(runUntil([&] { return gtk_window_is_active(GTK_WINDOW(panel)) == TRUE; }));
    // The panel is neither modal nor the main window, so menus and new tabs still apply to the main window.
    EXPECT_EQ(Application::shared().mainWindow(), window->window());
    EXPECT_FALSE(gtk_window_get_modal(GTK_WINDOW(panel)));
}

TEST_F(ApplicationTest, thereIsOneAboutPanel) {
    const auto a = open("a");
    perform(StandardAction::orderFrontStandardAboutPanel);
    const auto b = open("b");
    perform(StandardAction::orderFrontStandardAboutPanel);
    ASSERT_EQ(aboutPanels().size(), 1U);
    EXPECT_TRUE(runUntil([&] { return gtk_window_is_active(GTK_WINDOW(aboutPanels().front())) == TRUE; }));
    gtk_window_close(GTK_WINDOW(aboutPanels().front()));
    EXPECT_TRUE(aboutPanels().empty());
    perform(StandardAction::orderFrontStandardAboutPanel);
    EXPECT_EQ(aboutPanels().size(), 1U);
}

TEST_F(ApplicationTest, theAboutPanelOutlivesTheWindowItWasOpenedFrom) {
    const auto a = open("a");
    perform(StandardAction::orderFrontStandardAboutPanel);
    a->window()->close();
    TestSupport::runPending();
    ASSERT_EQ(aboutPanels().size(), 1U);
    gtk_window_close(GTK_WINDOW(aboutPanels().front()));
    EXPECT_TRUE(aboutPanels().empty());
}

} // namespace Platform::Tests
