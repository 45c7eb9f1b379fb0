#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Tests/Platform/AppKit/linux/AppKitFixture.h"
#include "Tests/Support/Display.h"

#include <filesystem>
#include <memory>

namespace Platform::Tests {

using TestSupport::runUntil;

namespace {

/// Fixture for tests of windows that have a frame autosave name. The tests run under a window manager, on a
/// screen of 1600 by 1200 pixels.
class FrameAutosaveTest : public AppKitTest {
protected:
    static constexpr const char* name = "Kept Window";

    FrameAutosaveTest() {
        TestSupport::startWindowManager();
        Application::shared().native().hosts.frames.reset();
        std::filesystem::remove_all(g_get_user_state_dir());
    }

    static SavedFrames& frames() { return Application::shared().native().hosts.savedFrames(); }

    static std::shared_ptr<RecordingController> openWindow() {
        auto controller = RecordingController::create("window");
        controller->window()->setMinSize({.width = 480, .height = 320});
        controller->window()->setFrameAutosaveName(name);
        show(controller->window());
        return controller;
    }
    static GtkWindow* toplevelOf(const RecordingController& controller) {
        return TabHost::of(*controller.window())->toplevel();
    }
    static SavedFrame frameOf(const RecordingController& controller) {
        SavedFrame frame{.isMaximized = gtk_window_is_maximized(toplevelOf(controller)) == TRUE};
        gtk_window_get_default_size(toplevelOf(controller), &frame.width, &frame.height);
        return frame;
    }
    static Size sizeOf(const RecordingController& controller) {
        GtkWidget* toplevel = GTK_WIDGET(toplevelOf(controller));
        return {.width = static_cast<double>(gtk_widget_get_width(toplevel)),
                .height = static_cast<double>(gtk_widget_get_height(toplevel))};
    }
    [[nodiscard]] static bool waitForFrame(const SavedFrame& frame) {
        return runUntil([&] { return frames().frame(name) == frame; });
    }
    [[nodiscard]] static bool waitForSize(const RecordingController& controller, Size size) {
        return runUntil([&] { return sizeOf(controller) == size; });
    }
};

} // namespace

TEST_F(FrameAutosaveTest, theFirstWindowHasTheSizeItsMakerGaveIt) {
    const auto controller = openWindow();
    EXPECT_TRUE(waitForSize(*controller, {.width = 600, .height = 400}));
    EXPECT_EQ(frames().frame(name), std::nullopt);
}

TEST_F(FrameAutosaveTest, aNewWindowHasTheFrameOfTheLastOne) {
    auto controller = openWindow();
    gtk_window_set_default_size(toplevelOf(*controller), 700, 500);
    ASSERT_TRUE(waitForFrame({.width = 700, .height = 500}));
    controller->window()->close();
    controller = openWindow();
    EXPECT_TRUE(waitForSize(*controller, {.width = 700, .height = 500}));
}

TEST_F(FrameAutosaveTest, widthAndHeightAreKeptEachByItself) {
    const auto controller = openWindow();
    const SavedFrame before = frameOf(*controller);
    gtk_window_set_default_size(toplevelOf(*controller), 700, before.height);
    EXPECT_TRUE(waitForFrame({.width = 700, .height = before.height}));
    gtk_window_set_default_size(toplevelOf(*controller), 700, 500);
    EXPECT_TRUE(waitForFrame({.width = 700, .height = 500}));
}

TEST_F(FrameAutosaveTest, theNextRunStartsWithTheFrameOfThisOne) {
    const auto controller = openWindow();
    gtk_window_set_default_size(toplevelOf(*controller), 700, 500);
    EXPECT_TRUE(runUntil([&] {
        return SavedFrames(g_get_user_state_dir()).frame(name) == SavedFrame{.width = 700, .height = 500};
    }));
}

TEST_F(FrameAutosaveTest, aMaximisedWindowComesBackMaximisedAndKnowsItsOtherSize) {
    auto controller = openWindow();
    gtk_window_set_default_size(toplevelOf(*controller), 700, 500);
    ASSERT_TRUE(waitForFrame({.width = 700, .height = 500}));
    gtk_window_maximize(toplevelOf(*controller));
    ASSERT_TRUE(waitForFrame({.width = 700, .height = 500, .isMaximized = true}));
    controller->window()->close();

    controller = openWindow();
    EXPECT_TRUE(runUntil([&] { return sizeOf(*controller).width == 1600; }));
    EXPECT_TRUE(gtk_window_is_maximized(toplevelOf(*controller)));
    gtk_window_unmaximize(toplevelOf(*controller));
    EXPECT_TRUE(waitForSize(*controller, {.width = 700, .height = 500}));
    EXPECT_TRUE(waitForFrame({.width = 700, .height = 500}));
}

TEST_F(FrameAutosaveTest, aKeptSizeIsFittedToScreenAndLeastSize) {
    struct Case {
        SavedFrame kept;
        SavedFrame taken;
    };
    for (const Case& c : {Case{{.width = 1, .height = 2}, {.width = 480, .height = 320}},
                          Case{{.width = 1, .height = 900}, {.width = 480, .height = 900}},
                          Case{{.width = 2147483647, .height = 2147483647}, {.width = 1600, .height = 1200}},
                          Case{{.width = 1000, .height = 99999}, {.width = 1000, .height = 1200}}}) {
        frames().setFrame(name, c.kept);
        const auto controller = RecordingController::create("window");
        controller->window()->setMinSize({.width = 480, .height = 320});
        controller->window()->setFrameAutosaveName(name);
        controller->window()->makeKeyAndOrderFront();
        EXPECT_EQ(frameOf(*controller), c.taken);
        controller->window()->close();
        TestSupport::runPending();
    }
}

TEST_F(FrameAutosaveTest, aWindowWithoutANameKeepsNothing) {
    const auto controller = RecordingController::create("window");
    show(controller->window());
    gtk_window_set_default_size(toplevelOf(*controller), 700, 500);
    ASSERT_TRUE(waitForSize(*controller, {.width = 700, .height = 500}));
    EXPECT_EQ(frames().frame(""), std::nullopt);
    EXPECT_EQ(frames().frame(name), std::nullopt);
}

} // namespace Platform::Tests
