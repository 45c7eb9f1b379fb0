#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Tests/Platform/AppKit/linux/AppKitFixture.h"

namespace Platform::Tests {

using TestSupport::runPending;

namespace {

class WindowTest : public AppKitTest {};

} // namespace

TEST_F(WindowTest, contentHasTheSizeAskedForBelowTheMenuBar) {
    const auto menu = Menu::create();
    const auto file = MenuItem::create("File", std::nullopt);
    file->setSubmenu(Menu::create("File"));
    menu->addItem(file);
    Application::shared().setMainMenu(menu);
    const auto window = Window::create({.width = 600, .height = 400}, {});
    show(window);
    EXPECT_EQ(window->contentView()->frame(), (Rect{0, 0, 600, 400}));
    const auto host = TabHost::of(*window);
    EXPECT_GT(gtk_widget_get_allocated_height(GTK_WIDGET(host->toplevel())), 400);
}

TEST_F(WindowTest, contentAsksForItsLeastSizeWhateverItHolds) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    window->setMinSize({.width = 300, .height = 200});
    show(window);
    GtkRequisition least;
    gtk_widget_get_preferred_size(window->native().page.get(), &least, nullptr);
    EXPECT_EQ(least.width, 300);
    EXPECT_EQ(least.height, 200);
}

TEST_F(WindowTest, closingTellsTheDelegateOnce) {
    const auto controller = RecordingController::create("one");
    show(controller->window());
    controller->window()->close();
    controller->window()->close();
    runPending();
    EXPECT_EQ(controller->closed, std::vector<std::string>{"one"});
    EXPECT_TRUE(Application::shared().native().hosts.all().empty());
}

TEST_F(WindowTest, closingTheTopLevelClosesEachTabOnceInOrder) {
    const auto first = RecordingController::create("first");
    const auto second = RecordingController::create("second");
    const auto third = RecordingController::create("third");
    std::vector<std::string> order;
    for (const auto& controller : {first, second, third}) {
        controller->whenClosing = [&order, controller] { order.push_back(controller->window()->title()); };
    }
    show(first->window());
    first->window()->addTabbedWindow(second->window());
    second->window()->addTabbedWindow(third->window());
    gtk_window_close(TabHost::of(*first->window())->toplevel());
    runPending();
    EXPECT_EQ(order, (std::vector<std::string>{"first", "second", "third"}));
    for (const auto& controller : {first, second, third}) {
        controller->whenClosing = nullptr;
    }
}

TEST_F(WindowTest, aControllerMayBeLetGoByItsOwnClosing) {
    auto controller = RecordingController::create("gone");
    show(controller->window());
    const std::weak_ptr<RecordingController> weak = controller;
    controller->whenClosing = [&] { controller.reset(); };
    const auto window = controller->window();
    window->close();
    EXPECT_TRUE(weak.expired());
    runPending();
}

TEST_F(WindowTest, aWindowThatIsLetGoLeavesNoTab) {
    const auto stays = RecordingController::create("stays");
    show(stays->window());
    auto leaves = RecordingController::create("leaves");
    stays->window()->addTabbedWindow(leaves->window());
    const auto host = TabHost::of(*stays->window());
    ASSERT_EQ(host->windows().size(), 2U);
    leaves.reset();
    runPending();
    EXPECT_EQ(adw_tab_view_get_n_pages(host->tabView()), 1);
}

TEST_F(WindowTest, tabsStandBesideTheOneTheyWereAddedTo) {
    const auto a = RecordingController::create("a");
    const auto b = RecordingController::create("b");
    const auto c = RecordingController::create("c");
    show(a->window());
    a->window()->addTabbedWindow(b->window());
    a->window()->addTabbedWindow(c->window());
    const auto windows = TabHost::of(*a->window())->windows();
    ASSERT_EQ(windows.size(), 3U);
    EXPECT_EQ(windows[1], c->window());
    EXPECT_EQ(windows[2], b->window());
    EXPECT_EQ(TabHost::of(*a->window())->selectedWindow(), a->window());
}

TEST_F(WindowTest, titlesFollowTheSelectedTab) {
    const auto a = RecordingController::create("a");
    const auto b = RecordingController::create("b");
    show(a->window());
    a->window()->addTabbedWindow(b->window());
    const auto host = TabHost::of(*a->window());
    EXPECT_STREQ(gtk_window_get_title(host->toplevel()), "a");
    b->window()->setTitle("b, later");
    EXPECT_STREQ(gtk_window_get_title(host->toplevel()), "a");
    show(b->window());
    EXPECT_STREQ(gtk_window_get_title(host->toplevel()), "b, later");
}

TEST_F(WindowTest, previousAndNextTabWrapAround) {
    const auto a = RecordingController::create("a");
    const auto b = RecordingController::create("b");
    show(a->window());
    a->window()->addTabbedWindow(b->window());
    const auto host = TabHost::of(*a->window());
    a->window()->perform(StandardAction::selectPreviousTab, {});
    EXPECT_EQ(host->selectedWindow(), b->window());
    b->window()->perform(StandardAction::selectNextTab, {});
    EXPECT_EQ(host->selectedWindow(), a->window());
}

TEST_F(WindowTest, theMainWindowIsTheSelectedTabOfTheTopLevelInFront) {
    EXPECT_EQ(Application::shared().mainWindow(), nullptr);
    const auto a = RecordingController::create("a");
    const auto b = RecordingController::create("b");
    const auto c = RecordingController::create("c");
    show(a->window());
    a->window()->addTabbedWindow(b->window());
    EXPECT_EQ(Application::shared().mainWindow(), a->window());
    show(b->window());
    EXPECT_EQ(Application::shared().mainWindow(), b->window());
    show(c->window());
    EXPECT_EQ(Application::shared().mainWindow(), c->window());
    c->window()->close();
    runPending();
    EXPECT_EQ(Application::shared().mainWindow(), b->window());
}

TEST_F(WindowTest, actionsGoDownTheResponderChain) {
    const auto controller = RecordingController::create("a");
    controller->recorder.answers = TestAction::reload;
    const auto field = TextField::create();
    controller->window()->contentView()->addSubview(field);
    show(controller->window());
    EXPECT_EQ(targetForAction(TestAction::reload), controller);
    EXPECT_EQ(targetForAction(StandardAction::performClose), controller->window());
    controller->window()->makeFirstResponder(field);
    EXPECT_EQ(targetForAction(StandardAction::copy), field);
    EXPECT_EQ(targetForAction(StandardAction::terminate).get(), &Application::shared());

    EXPECT_TRUE(sendAction(TestAction::reload, nullptr, {}));
    EXPECT_EQ(controller->recorder.performed, std::vector{TestAction::reload});
    EXPECT_FALSE(sendAction(TestAction::goBack, nullptr, {}));
}

TEST_F(WindowTest, aTabMovedToAnotherTopLevelIsTheSameWindow) {
    const auto a = RecordingController::create("a");
    const auto b = RecordingController::create("b");
    const auto c = RecordingController::create("c");
    show(a->window());
    a->window()->addTabbedWindow(b->window());
    show(c->window());
    const auto from = TabHost::of(*a->window());
    const auto to = TabHost::of(*c->window());
    AdwTabPage* page = adw_tab_view_get_page(from->tabView(), b->window()->native().page.get());
    adw_tab_view_transfer_page(from->tabView(), page, to->tabView(), 1);
    runPending();
    EXPECT_EQ(TabHost::of(*b->window()), to);
    EXPECT_TRUE(b->closed.empty());
    EXPECT_EQ(from->windows().size(), 1U);
}

TEST_F(WindowTest, orderedOutItKeepsItsContentAndMayBeShownAgain) {
    const auto controller = RecordingController::create("one");
    const auto window = controller->window();
    show(window);
    window->orderOut();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(Application::shared().mainWindow(), nullptr);
    runPending();
    EXPECT_TRUE(controller->closed.empty());
    show(window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(Application::shared().mainWindow(), window);
}

TEST_F(WindowTest, aTabAddedToAWindowThatWasNeverShownShowsBoth) {
    const auto first = RecordingController::create("first");
    const auto second = RecordingController::create("second");
    first->window()->addTabbedWindow(second->window());
    const auto host = TabHost::of(*first->window());
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(host->windows(), (std::vector{first->window(), second->window()}));
    EXPECT_TRUE(TestSupport::runUntil([&] { return first->window()->isVisible(); }));
    EXPECT_EQ(host->selectedWindow(), first->window());
    show(second->window());
    EXPECT_EQ(TabHost::of(*second->window()), host);
}

TEST_F(WindowTest, orderingOutWhatWasNeverShownDoesNothing) {
    Window::create({.width = 300, .height = 200}, {})->orderOut();
    EXPECT_TRUE(Application::shared().native().hosts.all().empty());
}

TEST_F(WindowTest, orderedOutItIsNoMainWindowBesideAnother) {
    const auto other = Window::create({.width = 300, .height = 200}, {});
    show(other);
    const auto window = Window::create({.width = 300, .height = 200}, {});
    show(window);
    window->orderOut();
    EXPECT_EQ(Application::shared().mainWindow(), other);
}

TEST_F(WindowTest, thatIsNotReleasedWhenClosedOnlyHides) {
    const auto controller = RecordingController::create("one");
    const auto window = controller->window();
    EXPECT_TRUE(window->isReleasedWhenClosed());
    window->setReleasedWhenClosed(false);
    const auto close = {+[](Window& window) { gtk_window_close(TabHost::of(window)->toplevel()); },
                        +[](Window& window) { window.close(); },
                        +[](Window& window) { window.native().closeTab(); }};
    for (const auto& closeWindow : close) {
        show(window);
        closeWindow(*window);
        runPending();
        EXPECT_FALSE(window->isVisible());
    }
    EXPECT_TRUE(controller->closed.empty());
    EXPECT_EQ(Application::shared().native().hosts.all().size(), 1U);
}

TEST_F(WindowTest, thatIsNotReleasedWhenClosedGoesWithItsOwner) {
    auto window = Window::create({.width = 300, .height = 200}, {});
    window->setReleasedWhenClosed(false);
    show(window);
    window->close();
    window.reset();
    runPending();
    EXPECT_TRUE(Application::shared().native().hosts.all().empty());
}

TEST_F(WindowTest, doesNotTakeOrBecomeATabOnceClosed) {
    const auto open = Window::create({.width = 300, .height = 200}, {});
    show(open);
    const auto closed = Window::create({.width = 300, .height = 200}, {});
    closed->close();
    closed->addTabbedWindow(Window::create({.width = 300, .height = 200}, {}));
    open->addTabbedWindow(closed);
    runPending();
    EXPECT_EQ(Application::shared().native().hosts.windows(), std::vector{open});
}

TEST_F(WindowTest, mayHaveAnotherContent) {
    const auto early = View::create();
    const auto window = Window::create({.width = 300, .height = 200}, {});
    window->setContentView(early);
    EXPECT_EQ(window->contentView(), early);
    EXPECT_EQ(early->window(), window);
    show(window);
    EXPECT_TRUE(gtk_widget_get_mapped(widgetOf(early)));
    EXPECT_EQ(early->frame(), (Rect{0, 0, 300, 200}));
    const auto late = View::create();
    window->setContentView(late);
    EXPECT_EQ(early->window(), nullptr);
    EXPECT_TRUE(TestSupport::runUntil([&] { return gtk_widget_get_mapped(widgetOf(late)) == TRUE; }));
    EXPECT_TRUE(TestSupport::runUntil([&] { return late->frame() == Rect{0, 0, 300, 200}; }));
    EXPECT_EQ(early->superview(), nullptr);
}

} // namespace Platform::Tests
