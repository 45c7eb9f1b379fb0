#include "Tests/Platform/AppKit/linux/AppKitFixture.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/linux/Xdotool.h"

#include <string>

namespace Platform::Tests {

using TestSupport::runUntil;

namespace {

/// A menu delegate that replaces the items of the menu on each update.
struct Maker : MenuDelegate {
    void menuNeedsUpdate(Menu& menu) override {
        ++updates;
        menu.removeAllItems();
        menu.addItem(MenuItem::create("Made " + std::to_string(updates), TestAction::toggleBookmark, "d"));
    }
    int updates = 0;
};

class MenuBarTest : public AppKitTest {
protected:
    MenuBarTest() {
        const auto mainMenu = Menu::create();
        const auto add = [&](const std::shared_ptr<Menu>& menu) {
            const auto item = MenuItem::create(menu->title(), std::nullopt);
            item->setSubmenu(menu);
            mainMenu->addItem(item);
        };
        file->addItem(MenuItem::create("New Tab", TestAction::newTab, "t"));
        file->addItem(MenuItem::createSeparator());
        file->addItem(MenuItem::create("under_score", TestAction::reload));
        file->addItem(MenuItem::create("Nobody's", TestAction::goBack));
        add(file);
        made->setDelegate(maker);
        add(made);
        Application::shared().setMainMenu(mainMenu);
    }

    static GtkWidget* popover(const std::shared_ptr<Window>& window, int index) {
        GtkWidget* item = gtk_widget_get_first_child(TabHost::of(*window)->menuBar()->widget());
        for (; index > 0; --index) {
            item = gtk_widget_get_next_sibling(item);
        }
        for (GtkWidget* child = gtk_widget_get_first_child(item); child;
             child = gtk_widget_get_next_sibling(child)) {
            if (GTK_IS_POPOVER(child)) {
                return child;
            }
        }
        return nullptr;
    }

    /// Returns the descendant of `widget` that shows the menu item with this title, or null.
    static GtkWidget* itemIn(GtkWidget* widget, const std::string& title) {
        if (GTK_IS_LABEL(widget) && gtk_label_get_text(GTK_LABEL(widget)) == title) {
            return gtk_widget_get_parent(widget);
        }
        GtkWidget* found = nullptr;
        for (GtkWidget* child = gtk_widget_get_first_child(widget); child && !found;
             child = gtk_widget_get_next_sibling(child)) {
            found = itemIn(child, title);
        }
        return found;
    }

    static GMenuModel* sectionOf(GtkWidget* popover, int section) {
        return g_menu_model_get_item_link(gtk_popover_menu_get_menu_model(GTK_POPOVER_MENU(popover)), section,
                                          G_MENU_LINK_SECTION);
    }

    static std::string attribute(GMenuModel* model, int item, const char* name) {
        char* text = nullptr;
        g_menu_model_get_item_attribute(model, item, name, "s", &text);
        const std::string value = text ? text : "";
        g_free(text);
        return value;
    }

    /// Starts a window manager, and shows an active window with a text field that has the focus.
    std::shared_ptr<TextField> showActiveField() const {
        TestSupport::startWindowManager();
        auto field = TextField::create();
        controller->window()->contentView()->addSubview(field);
        show(controller->window());
        field->selectText();
        EXPECT_TRUE(
            runUntil([&] { return gtk_window_is_active(TabHost::of(*controller->window())->toplevel()); }));
        return field;
    }

    std::shared_ptr<Menu> file = Menu::create("File");
    std::shared_ptr<Menu> made = Menu::create("Made");
    std::shared_ptr<Maker> maker = std::make_shared<Maker>();
    std::shared_ptr<RecordingController> controller = RecordingController::create("page");
};

} // namespace

TEST_F(MenuBarTest, aMenuIsMadeWhenItOpensAndNotBefore) {
    show(controller->window());
    GtkWidget* menu = popover(controller->window(), 1);
    EXPECT_EQ(g_menu_model_get_n_items(gtk_popover_menu_get_menu_model(GTK_POPOVER_MENU(menu))), 0);
    const int before = maker->updates;
    gtk_popover_popup(GTK_POPOVER(menu));
    EXPECT_EQ(maker->updates, before + 1);
    const auto section = GObjectPtr<GMenuModel>::adopt(sectionOf(menu, 0));
    EXPECT_EQ(attribute(section.get(), 0, G_MENU_ATTRIBUTE_LABEL), "Made " + std::to_string(maker->updates));
    EXPECT_EQ(attribute(section.get(), 0, "accel"), "<Control>d");
}

TEST_F(MenuBarTest, showsTitlesAsTheyStandAndSeparatorsAsSections) {
    show(controller->window());
    GtkWidget* menu = popover(controller->window(), 0);
    gtk_popover_popup(GTK_POPOVER(menu));
    EXPECT_EQ(g_menu_model_get_n_items(gtk_popover_menu_get_menu_model(GTK_POPOVER_MENU(menu))), 2);
    const auto section = GObjectPtr<GMenuModel>::adopt(sectionOf(menu, 1));
    EXPECT_EQ(attribute(section.get(), 0, G_MENU_ATTRIBUTE_LABEL), "under__score");
}

TEST_F(MenuBarTest, anItemIsGreyWhenNobodyWouldPerformItOrItsTargetSaysSo) {
    controller->recorder.answers = TestAction::reload;
    show(controller->window());
    GtkWidget* menu = popover(controller->window(), 0);
    gtk_popover_popup(GTK_POPOVER(menu));
    EXPECT_FALSE(gtk_widget_get_sensitive(itemIn(menu, "Nobody's")));
    EXPECT_TRUE(gtk_widget_get_sensitive(itemIn(menu, "under_score")));
    g_signal_emit_by_name(itemIn(menu, "under_score"), "clicked");
    EXPECT_TRUE(runUntil([&] { return controller->recorder.performed == std::vector{TestAction::reload}; }));

    controller->recorder.valid = false;
    gtk_popover_popdown(GTK_POPOVER(menu));
    gtk_popover_popup(GTK_POPOVER(menu));
    EXPECT_FALSE(gtk_widget_get_sensitive(itemIn(menu, "under_score")));
}

TEST_F(MenuBarTest, keysWorkBeforeTheirMenuWasEverOpened) {
    controller->recorder.answers = TestAction::toggleBookmark;
    showActiveField();
    TestSupport::runXdotool({"key", "ctrl+d"});
    EXPECT_TRUE(
        runUntil([&] { return controller->recorder.performed == std::vector{TestAction::toggleBookmark}; }));
}

TEST_F(MenuBarTest, theKeyOfADisabledItemDoesNothingAnywhere) {
    controller->recorder.valid = false;
    const auto field = showActiveField();
    TestSupport::runXdotool({"key", "ctrl+d"});
    TestSupport::runXdotool({"key", "x"});
    ASSERT_TRUE(runUntil([&] { return field->stringValue() == "x"; }));
    EXPECT_TRUE(controller->recorder.performed.empty());
}

} // namespace Platform::Tests
