#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Tests/Platform/AppKit/linux/AppKitFixture.h"
#include "Tests/Support/Display.h"

#include <string>
#include <vector>

namespace Platform::Tests {

using TestSupport::runPending;
using TestSupport::runUntil;

namespace {

/// Fixture for tests of the windows menu, which is the second menu in the menu bar.
class WindowsMenuTest : public AppKitTest {
protected:
    static constexpr int file = 0;
    static constexpr int windows = 1;

    /// An item in the menu's list of windows, as GTK shows it.
    struct Listed {
        std::string label;
        bool isMarked = false;

        friend bool operator==(const Listed&, const Listed&) = default;
    };

    WindowsMenuTest() {
        const auto mainMenu = Menu::create();
        const auto add = [&](const std::shared_ptr<Menu>& menu) {
            const auto item = MenuItem::create(menu->title(), std::nullopt);
            item->setSubmenu(menu);
            menu->addItem(MenuItem::create("New Tab", TestAction::newTab, "t"));
            mainMenu->addItem(item);
        };
        add(Menu::create("File"));
        add(windowsMenu);
        Application::shared().setMainMenu(mainMenu);
        Application::shared().setWindowsMenu(windowsMenu);
    }

    static GtkPopover* popover(const RecordingController& controller, int index) {
        GtkWidget* item = gtk_widget_get_first_child(TabHost::of(*controller.window())->menuBar()->widget());
        for (; index > 0; --index) {
            item = gtk_widget_get_next_sibling(item);
        }
        for (GtkWidget* child = gtk_widget_get_first_child(item); child;
             child = gtk_widget_get_next_sibling(child)) {
            if (GTK_IS_POPOVER(child)) {
                return GTK_POPOVER(child);
            }
        }
        return nullptr;
    }
    static void openMenu(const RecordingController& controller, int index = windows) {
        gtk_popover_popup(popover(controller, index));
    }
    static void closeMenu(const RecordingController& controller) {
        gtk_popover_popdown(popover(controller, windows));
    }

    /// Appends the visible menu items among the descendants of `widget` to `items`, in order.
    static void collectItems(GtkWidget* widget, std::vector<GtkWidget*>& items) {
        for (GtkWidget* child = gtk_widget_get_first_child(widget); child;
             child = gtk_widget_get_next_sibling(child)) {
            if (gtk_widget_get_mapped(child) && std::string(G_OBJECT_TYPE_NAME(child)) == "GtkModelButton") {
                items.push_back(child);
            } else {
                collectItems(child, items);
            }
        }
    }
    static std::vector<GtkWidget*> itemsOf(const RecordingController& controller, int index = windows) {
        std::vector<GtkWidget*> items;
        collectItems(GTK_WIDGET(popover(controller, index)), items);
        return items;
    }

    /// Returns the list of windows in the windows menu, which follows the menu's "New Tab" item.
    static std::vector<Listed> listOf(const RecordingController& controller) {
        std::vector<Listed> list;
        for (GtkWidget* item : itemsOf(controller)) {
            char* label = nullptr;
            gboolean isMarked = FALSE;
            g_object_get(item, "text", &label, "active", &isMarked, nullptr);
            list.push_back({.label = label, .isMarked = isMarked == TRUE});
            g_free(label);
        }
        if (list.empty() || list.front().label != "New Tab") {
            ADD_FAILURE() << "the menu's own item is missing";
            return list;
        }
        list.erase(list.begin());
        return list;
    }

    static void choose(const RecordingController& controller, std::size_t index) {
        const auto items = itemsOf(controller);
        ASSERT_LT(index + 1, items.size());
        g_signal_emit_by_name(items[index + 1], "clicked");
    }

    static std::shared_ptr<RecordingController> open(const std::string& title,
                                                     const RecordingController* beside = nullptr) {
        auto controller = RecordingController::create(title);
        if (beside) {
            beside->window()->addTabbedWindow(controller->window());
        }
        show(controller->window());
        return controller;
    }

    std::shared_ptr<Menu> windowsMenu = Menu::create("Window");
};

} // namespace

TEST_F(WindowsMenuTest, listsEveryTabAndMarksTheMainOne) {
    const auto a = open("a");
    const auto b = open("b_1", a.get());
    const auto c = open("c");
    openMenu(*c);
    EXPECT_EQ(listOf(*c), (std::vector<Listed>{{"a"}, {"b_1"}, {"c", true}}));
    closeMenu(*c);
    show(a->window());
    openMenu(*a);
    EXPECT_EQ(listOf(*a), (std::vector<Listed>{{"a", true}, {"b_1"}, {"c"}}));
    // The list of windows is not added to the `Menu` object, and is not shown in other menus.
    EXPECT_EQ(windowsMenu->items().size(), 1U);
    closeMenu(*a);
    openMenu(*a, file);
    EXPECT_EQ(itemsOf(*a, file).size(), 1U);
}

TEST_F(WindowsMenuTest, isMadeAnewAtEachOpeningAndNotBefore) {
    const auto a = open("a");
    GMenuModel* model = gtk_popover_menu_get_menu_model(GTK_POPOVER_MENU(popover(*a, windows)));
    EXPECT_EQ(g_menu_model_get_n_items(model), 0);
    auto b = open("b", a.get());
    openMenu(*a);
    EXPECT_EQ(listOf(*a), (std::vector<Listed>{{"a"}, {"b", true}}));
    closeMenu(*a);
    b->window()->setTitle("b, later");
    openMenu(*a);
    EXPECT_EQ(listOf(*a), (std::vector<Listed>{{"a"}, {"b, later", true}}));
    closeMenu(*a);
    b->window()->close();
    openMenu(*a);
    EXPECT_EQ(listOf(*a), (std::vector<Listed>{{"a", true}}));
}

TEST_F(WindowsMenuTest, choosingAWindowSelectsItsTabAndBringsItToTheFront) {
    TestSupport::startWindowManager();
    const auto a = open("a");
    const auto b = open("b", a.get());
    const auto c = open("c");
    gtk_window_minimize(TabHost::of(*a->window())->toplevel());
    openMenu(*c);
    choose(*c, 0);
    EXPECT_TRUE(runUntil([&] {
        const auto host = TabHost::of(*a->window());
        return host->selectedWindow() == a->window() && gtk_window_is_active(host->toplevel()) == TRUE;
    }));
    EXPECT_EQ(Application::shared().mainWindow(), a->window());
    openMenu(*a);
    EXPECT_EQ(listOf(*a), (std::vector<Listed>{{"a", true}, {"b"}, {"c"}}));
}

TEST_F(WindowsMenuTest, choosingAWindowThatHasClosedMeanwhileDoesNothing) {
    const auto a = open("a");
    auto b = open("b", a.get());
    show(a->window());
    openMenu(*a);
    b->window()->close();
    b.reset();
    runPending();
    choose(*a, 1);
    EXPECT_EQ(Application::shared().mainWindow(), a->window());
    EXPECT_EQ(TabHost::of(*a->window())->windows().size(), 1U);
}

TEST_F(WindowsMenuTest, listsHundreds) {
    const auto first = open("0");
    std::vector<std::shared_ptr<RecordingController>> others;
    for (int i = 1; i < 300; ++i) {
        others.push_back(RecordingController::create(std::to_string(i)));
        (i == 1 ? first : others.end()[-2])->window()->addTabbedWindow(others.back()->window());
    }
    openMenu(*first);
    const auto list = listOf(*first);
    ASSERT_EQ(list.size(), 300U);
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(list[i], (Listed{std::to_string(i), i == 0}));
    }
    choose(*first, 299);
    EXPECT_EQ(Application::shared().mainWindow(), others.back()->window());
}

TEST_F(WindowsMenuTest, choosingAWindowTakesTheFocusFromTheTabStripToItsFirstResponder) {
    const auto a = open("a");
    const auto field = TextField::create();
    a->window()->contentView()->addSubview(field);
    field->selectText();
    ASSERT_TRUE(runUntil([&] { return widgetOf(field) && gtk_widget_get_mapped(widgetOf(field)); }));
    typeInto(field, "half typed");
    const auto b = open("b", a.get());
    GtkWindow* toplevel = TabHost::of(*a->window())->toplevel();
    for (GtkWidget* child = gtk_widget_get_first_child(gtk_window_get_child(toplevel)); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (ADW_IS_TAB_BAR(child)) {
            gtk_widget_child_focus(child, GTK_DIR_TAB_FORWARD);
        }
    }
    ASSERT_EQ(viewOfWidget(gtk_window_get_focus(toplevel)), nullptr) << "the tab is not in the strip";
    openMenu(*b);
    choose(*b, 0);
    EXPECT_TRUE(runUntil([&] { return viewOfWidget(gtk_window_get_focus(toplevel)) == field.get(); }));
    EXPECT_EQ(field->stringValue(), "half typed");
    EXPECT_TRUE(field->isEditing());
}

TEST_F(WindowsMenuTest, theFocusComesBackFromTheMenus) {
    TestSupport::startWindowManager();
    const auto a = open("a");
    const auto field = TextField::create();
    a->window()->contentView()->addSubview(field);
    open("b", a.get());
    show(a->window());
    field->selectText();
    GtkWindow* toplevel = TabHost::of(*a->window())->toplevel();
    const auto isBack = [&] {
        GtkWidget* focus = gtk_window_get_focus(toplevel);
        return focus && viewOfWidget(focus) == field.get();
    };
    ASSERT_TRUE(runUntil([&] { return gtk_window_is_active(toplevel) && isBack(); }));
    openMenu(*a, file);
    gtk_popover_popdown(popover(*a, file));
    openMenu(*a);
    runPending();
    // Closing the File menu does not return the focus to the text field while the windows menu is open. The
    // first item of the windows menu keeps the focus.
    EXPECT_EQ(gtk_window_get_focus(toplevel), itemsOf(*a).front());
    closeMenu(*a);
    EXPECT_TRUE(runUntil(isBack));
}

} // namespace Platform::Tests
