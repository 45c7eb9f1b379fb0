#include "Platform/AppKit/Alert.h"

#include "Tests/Platform/AppKit/linux/AppKitFixture.h"

#include <optional>

namespace Platform::Tests {

using TestSupport::runPending;
using TestSupport::runUntil;

namespace {

class AlertTest : public AppKitTest {
protected:
    Sheet* sheet() const { return controller->window()->native().sheet.get(); }

    static GtkWidget* findButton(GtkWidget* widget, const std::string& title) {
        if (GTK_IS_BUTTON(widget) && gtk_button_get_label(GTK_BUTTON(widget)) == title) {
            return widget;
        }
        for (GtkWidget* child = gtk_widget_get_first_child(widget); child;
             child = gtk_widget_get_next_sibling(child)) {
            if (GtkWidget* found = findButton(child, title)) {
                return found;
            }
        }
        return nullptr;
    }

    void press(const std::string& title) const {
        GtkWidget* button = findButton(sheet()->widget(), title);
        ASSERT_NE(button, nullptr) << title;
        g_signal_emit_by_name(button, "clicked");
    }

    std::shared_ptr<RecordingController> controller = RecordingController::create("page");
};

} // namespace

TEST_F(AlertTest, answersWithTheChosenButtonOnce) {
    show(controller->window());
    std::vector<std::size_t> answers;
    controller->window()->beginSheet(
        Alert{.messageText = "Sure?", .informativeText = "", .buttonTitles = {"OK", "Cancel"}},
        [&](std::size_t button) { answers.push_back(button); });
    press("Cancel");
    runPending();
    EXPECT_EQ(answers, std::vector<std::size_t>{1});
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(AlertTest, hasAnOKButtonByDefault) {
    show(controller->window());
    int answers = 0;
    controller->window()->beginSheet(Alert{.messageText = "Note", .informativeText = ""},
                                     [&](std::size_t) { ++answers; });
    press("OK");
    EXPECT_EQ(answers, 1);
}

TEST_F(AlertTest, sheetsOfOnePageQueue) {
    show(controller->window());
    std::vector<std::string> answers;
    for (const char* name : {"first", "second"}) {
        controller->window()->beginSheet(Alert{.messageText = name, .informativeText = ""},
                                         [&answers, name](std::size_t) { answers.emplace_back(name); });
    }
    press("OK");
    EXPECT_EQ(answers, std::vector<std::string>{"first"});
    press("OK");
    EXPECT_EQ(answers, (std::vector<std::string>{"first", "second"}));
}

TEST_F(AlertTest, aClosingWindowGivesTheSafeAnswerToEverySheet) {
    show(controller->window());
    std::vector<std::size_t> answers;
    for (int i = 0; i < 2; ++i) {
        controller->window()->beginSheet(
            Alert{.messageText = "Sure?", .informativeText = "", .buttonTitles = {"OK", "Cancel"}},
            [&](std::size_t button) { answers.push_back(button); });
    }
    controller->window()->close();
    EXPECT_EQ(answers, (std::vector<std::size_t>{1, 1}));
    runPending();
}

TEST_F(AlertTest, aWindowThatIsDestroyedOpenGivesTheSafeAnswer) {
    std::optional<std::size_t> answer;
    auto window = Window::create({.width = 400, .height = 300}, {});
    show(window);
    window->beginSheet(Alert{.messageText = "Sure?", .informativeText = "", .buttonTitles = {"OK", "Cancel"}},
                       [&](std::size_t button) { answer = button; });
    window.reset();
    EXPECT_EQ(answer, 1U);
    runPending();
}

TEST_F(AlertTest, aClosedWindowAnswersAtOnce) {
    show(controller->window());
    controller->window()->close();
    std::optional<std::size_t> answer;
    controller->window()->beginSheet(
        Alert{.messageText = "Late", .informativeText = "", .buttonTitles = {"OK", "Cancel"}},
        [&](std::size_t button) { answer = button; });
    EXPECT_EQ(answer, 1U);
}

TEST_F(AlertTest, whatIsUnderTheSheetIsOutOfReachUntilItIsAnswered) {
    const auto field = TextField::create();
    controller->window()->contentView()->addSubview(field);
    show(controller->window());
    field->selectText();
    controller->window()->beginSheet(Alert{.messageText = "Note", .informativeText = ""}, nullptr);
    GtkWidget* content = widgetOf(controller->window()->contentView());
    EXPECT_FALSE(gtk_widget_get_can_target(content));
    EXPECT_FALSE(gtk_widget_get_can_focus(content));
    press("OK");
    EXPECT_TRUE(gtk_widget_get_can_target(content));
    EXPECT_TRUE(runUntil([&] {
        GtkWidget* focus = gtk_window_get_focus(TabHost::of(*controller->window())->toplevel());
        return focus && gtk_widget_is_ancestor(focus, widgetOf(field));
    }));
}

TEST_F(AlertTest, aSheetOnAHiddenTabWaitsThereAndAsksForAttention) {
    show(controller->window());
    const auto other = RecordingController::create("other");
    controller->window()->addTabbedWindow(other->window());
    show(other->window());
    controller->window()->beginSheet(Alert{.messageText = "Note", .informativeText = ""}, nullptr);
    const auto host = TabHost::of(*controller->window());
    AdwTabPage* page = adw_tab_view_get_page(host->tabView(), controller->window()->native().page.get());
    EXPECT_EQ(host->selectedWindow(), other->window());
    EXPECT_TRUE(adw_tab_page_get_needs_attention(page));
    show(controller->window());
    EXPECT_FALSE(adw_tab_page_get_needs_attention(page));
}

TEST_F(AlertTest, aSheetOnAWindowThatWasNeverShownComesWithIt) {
    std::optional<std::size_t> answer;
    controller->window()->beginSheet(
        Alert{.messageText = "Early", .informativeText = "", .buttonTitles = {"OK", "Cancel"}},
        [&](std::size_t button) { answer = button; });
    EXPECT_EQ(answer, std::nullopt);
    show(controller->window());
    EXPECT_TRUE(runUntil([&] { return gtk_widget_get_mapped(sheet()->widget()) == TRUE; }));
    const GtkWidget* focus = gtk_window_get_focus(TabHost::of(*controller->window())->toplevel());
    EXPECT_EQ(focus, findButton(sheet()->widget(), "OK"));
    press("Cancel");
    EXPECT_EQ(answer, 1U);
}

TEST_F(AlertTest, aLongTextKeepsTheButtonsInReach) {
    show(controller->window());
    controller->window()->beginSheet(Alert{.messageText = "Note", .informativeText = std::string(10000, 'w')},
                                     nullptr);
    GtkWidget* button = findButton(sheet()->widget(), "OK");
    GtkWidget* page = controller->window()->native().page.get();
    const auto isInReach = [&] {
        graphene_rect_t bounds;
        return gtk_widget_get_allocated_height(button) > 0 &&
               gtk_widget_compute_bounds(button, page, &bounds) && bounds.origin.y >= 0 &&
               bounds.origin.y + bounds.size.height <=
                   static_cast<float>(gtk_widget_get_allocated_height(page));
    };
    EXPECT_TRUE(runUntil(isInReach));
}

} // namespace Platform::Tests
