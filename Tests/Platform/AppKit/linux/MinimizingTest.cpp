#include "Platform/AppKit/linux/Minimizing.h"

#include "Tests/Platform/AppKit/linux/AppKitFixture.h"
#include "Tests/Support/Display.h"

#include <string>
#include <vector>

namespace Platform::Tests {

namespace {

/// Fixture for tests of a top-level window with a header bar. GTK adds a header bar to a window if no window
/// manager draws a frame.
class MinimizingTest : public AppKitTest {
public:
    MinimizingTest(const MinimizingTest&) = delete;
    MinimizingTest& operator=(const MinimizingTest&) = delete;
    ~MinimizingTest() override { gtk_window_destroy(toplevel()); }

protected:
    MinimizingTest() { gtk_window_set_titlebar(toplevel(), gtk_header_bar_new()); }

    GtkWindow* toplevel() const { return GTK_WINDOW(window_.get()); }

    void present() const {
        gtk_window_present(toplevel());
        EXPECT_TRUE(TestSupport::runUntil([this] { return gtk_widget_get_mapped(window_.get()) == TRUE; }));
    }

    /// The style classes of the minimize, maximize and close buttons in the header bar, in order.
    std::vector<std::string> buttons() const {
        std::vector<std::string> found;
        collectButtons(window_.get(), found);
        return found;
    }

private:
    static void collectButtons(GtkWidget* widget, std::vector<std::string>& found) {
        for (GtkWidget* child = gtk_widget_get_first_child(widget); child;
             child = gtk_widget_get_next_sibling(child)) {
            for (const char* button : {"minimize", "maximize", "close"}) {
                if (GTK_IS_BUTTON(child) && gtk_widget_has_css_class(child, button)) {
                    found.emplace_back(button);
                }
            }
            collectButtons(child, found);
        }
    }

    GObjectPtr<GtkWidget> window_ = GObjectPtr<GtkWidget>::retain(gtk_window_new());
};

using Buttons = std::vector<std::string>;

} // namespace

TEST_F(MinimizingTest, isOfferedUnlessWithheld) {
    present();
    EXPECT_EQ(buttons(), (Buttons{"minimize", "maximize", "close"}));
}

TEST_F(MinimizingTest, hasNoButtonOnceWithheld) {
    withholdMinimizing(toplevel());
    present();
    EXPECT_EQ(buttons(), (Buttons{"maximize", "close"}));
}

TEST_F(MinimizingTest, hasNoActionOnceWithheld) {
    TestSupport::startWindowManager();
    withholdMinimizing(toplevel());
    present();
    const auto other = GObjectPtr<GtkWidget>::retain(gtk_window_new());
    gtk_window_present(GTK_WINDOW(other.get()));
    const auto isMinimized = [](GtkWidget* widget) {
        GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(widget));
        return (gdk_toplevel_get_state(GDK_TOPLEVEL(surface)) & GDK_TOPLEVEL_STATE_MINIMIZED) != 0;
    };
    ASSERT_TRUE(TestSupport::runUntil([&] { return gtk_window_is_active(GTK_WINDOW(other.get())) == TRUE; }));
    gtk_widget_activate_action(GTK_WIDGET(toplevel()), "window.minimize", nullptr);
    gtk_widget_activate_action(other.get(), "window.minimize", nullptr);
    EXPECT_TRUE(TestSupport::runUntil([&] { return isMinimized(other.get()); }));
    EXPECT_FALSE(isMinimized(GTK_WIDGET(toplevel())));
    gtk_window_destroy(GTK_WINDOW(other.get()));
}

TEST_F(MinimizingTest, keepsTheUsersOrderOfTheOtherButtons) {
    GtkSettings* settings = gtk_widget_get_settings(GTK_WIDGET(toplevel()));
    g_object_set(settings, "gtk-decoration-layout", "close,minimize,maximize:menu", nullptr);
    withholdMinimizing(toplevel());
    present();
    gtk_settings_reset_property(settings, "gtk-decoration-layout");
    EXPECT_EQ(buttons(), (Buttons{"close", "maximize"}));
}

} // namespace Platform::Tests
