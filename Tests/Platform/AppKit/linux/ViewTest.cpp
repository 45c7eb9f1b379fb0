#include "Platform/AppKit/View.h"

#include "Platform/AppKit/Button.h"
#include "Platform/AppKit/StackView.h"
#include "Platform/AppKit/TextField.h"
#include "Platform/Foundation/MakeShared.h"
#include "Tests/Platform/AppKit/linux/AppKitFixture.h"

#include <memory>
#include <string>
#include <thread>

namespace Platform::Tests {

using TestSupport::runPending;
using TestSupport::runUntil;

namespace {

class ViewTest : public AppKitTest {
protected:
    /// Succeeds if the button shows a tooltip, and `text` is the button's accessible description.
    static testing::AssertionResult showsToolTip(const Button& button, const std::string& text) {
        GtkWidget* widget = button.nativeIfMade()->widget.get();
        const auto shown =
            GObjectPtr<GtkTooltip>::adopt(GTK_TOOLTIP(g_object_new(GTK_TYPE_TOOLTIP, nullptr)));
        gboolean shows = FALSE;
        g_signal_emit_by_name(widget, "query-tooltip", 0, 0, FALSE, shown.get(), &shows);
        if (!gtk_widget_get_has_tooltip(widget) || !shows) {
            return testing::AssertionFailure() << "no tooltip";
        }
        const std::unique_ptr<char, void (*)(gpointer)> other(
            gtk_test_accessible_check_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION,
                                               text.c_str()),
            &g_free);
        if (other) {
            return testing::AssertionFailure() << other.get();
        }
        return testing::AssertionSuccess();
    }
};

} // namespace

TEST_F(ViewTest, hasNoWidgetUntilItsWindowIsShown) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto button = Button::create("One", {}, TestAction::reload);
    window->contentView()->addSubview(button);
    EXPECT_EQ(widgetOf(button), nullptr);
    show(window);
    ASSERT_NE(widgetOf(button), nullptr);
    EXPECT_TRUE(gtk_widget_get_mapped(widgetOf(button)));
}

TEST_F(ViewTest, makesNoWidgetsInATabThatNobodyLooksAt) {
    const auto first = Window::create({.width = 600, .height = 400}, {});
    const auto second = Window::create({.width = 600, .height = 400}, {});
    const auto bar = StackView::create(Orientation::horizontal);
    first->contentView()->addSubview(bar);
    show(first);
    first->addTabbedWindow(second);
    show(second);

    const auto button = Button::create("Late", {}, TestAction::reload);
    bar->addArrangedSubview(button);
    runPending();
    EXPECT_EQ(widgetOf(button), nullptr);

    show(first);
    EXPECT_NE(widgetOf(button), nullptr);
}

TEST_F(ViewTest, followsItsSubviewsInOrder) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto bar = StackView::create(Orientation::horizontal);
    bar->setFillsSuperview();
    window->contentView()->addSubview(bar);
    const auto a = Button::create("A", {}, TestAction::reload);
    const auto b = Button::create("B", {}, TestAction::reload);
    const auto c = Button::create("C", {}, TestAction::reload);
    bar->addArrangedSubview(a);
    bar->addArrangedSubview(b);
    show(window);

    a->removeFromSuperview();
    bar->addArrangedSubview(c);
    bar->addArrangedSubview(a);
    ASSERT_TRUE(
        runUntil([&] { return widgetOf(c) && gtk_widget_get_next_sibling(widgetOf(c)) == widgetOf(a); }));
    EXPECT_EQ(gtk_widget_get_prev_sibling(widgetOf(b)), nullptr);
    ASSERT_TRUE(runUntil([&] { return a->frame().x > c->frame().x && c->frame().x > b->frame().x; }));
}

TEST_F(ViewTest, letsTheWidgetOfARemovedViewGo) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    auto button = Button::create("A", {}, TestAction::reload);
    window->contentView()->addSubview(button);
    show(window);
    GtkWidget* widget = widgetOf(button);
    g_object_add_weak_pointer(G_OBJECT(widget), reinterpret_cast<gpointer*>(&widget));
    button->removeFromSuperview();
    button.reset();
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
}

TEST_F(ViewTest, knowsItsWindow) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto outer = View::create();
    const auto inner = View::create();
    outer->addSubview(inner);
    EXPECT_EQ(inner->window(), nullptr);
    window->contentView()->addSubview(outer);
    EXPECT_EQ(inner->window(), window);
    outer->removeFromSuperview();
    EXPECT_EQ(inner->window(), nullptr);
}

TEST_F(ViewTest, showsPropertiesThatWereSetBeforeAndAfter) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto button = Button::create();
    button->setImage({"chevron.left", "Back"});
    button->setToolTip("Back");
    button->setEnabled(false);
    window->contentView()->addSubview(button);
    show(window);
    EXPECT_TRUE(showsToolTip(*button, "Back"));
    EXPECT_STREQ(gtk_button_get_icon_name(GTK_BUTTON(widgetOf(button))), "go-previous-symbolic");
    EXPECT_FALSE(gtk_widget_get_sensitive(widgetOf(button)));

    button->setEnabled(true);
    button->setImage({"chevron.right", "Forward"});
    button->setHidden(true);
    EXPECT_TRUE(gtk_widget_get_sensitive(widgetOf(button)));
    EXPECT_STREQ(gtk_button_get_icon_name(GTK_BUTTON(widgetOf(button))), "go-next-symbolic");
    EXPECT_FALSE(gtk_widget_get_visible(widgetOf(button)));
}

TEST_F(ViewTest, aShownButtonTakesAnotherBezelAndBorder) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto button = Button::create("Go", {}, TestAction::reload);
    window->contentView()->addSubview(button);
    show(window);
    const auto height = [&] {
        int natural = 0;
        gtk_widget_measure(widgetOf(button), GTK_ORIENTATION_VERTICAL, -1, nullptr, &natural, nullptr,
                           nullptr);
        return natural;
    };
    const int usual = height();
    EXPECT_TRUE(gtk_button_get_has_frame(GTK_BUTTON(widgetOf(button))));
    button->setBezelStyle(Button::BezelStyle::recessed);
    EXPECT_TRUE(runUntil([&] { return height() < usual; }));
    button->setBordered(false);
    EXPECT_FALSE(gtk_button_get_has_frame(GTK_BUTTON(widgetOf(button))));
    button->setBezelStyle(Button::BezelStyle::texturedRounded);
    EXPECT_TRUE(runUntil([&] { return height() == usual; }));
    button->setBordered(true);
    EXPECT_TRUE(gtk_button_get_has_frame(GTK_BUTTON(widgetOf(button))));
}

TEST_F(ViewTest, aStackCentersARowAndGivesAColumnItsWidth) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto addStack = [&](Orientation orientation) {
        const auto stack = StackView::create(orientation);
        const auto view = View::create();
        view->setFixedLength(40, Orientation::horizontal);
        view->setFixedLength(40, Orientation::vertical);
        stack->addArrangedSubview(view);
        stack->setFillsSuperview();
        window->contentView()->addSubview(stack);
        return view;
    };
    const auto inRow = addStack(Orientation::horizontal);
    const auto inColumn = addStack(Orientation::vertical);
    show(window);
    EXPECT_TRUE(runUntil([&] { return inRow->frame() == Rect{0, 180, 40, 40}; }));
    EXPECT_TRUE(runUntil([&] { return inColumn->frame() == Rect{0, 0, 600, 40}; }));
}

TEST_F(ViewTest, aFieldOfAFixedWidthDoesNotGrowWithItsPlaceholder) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto row = StackView::create(Orientation::horizontal);
    const auto field = SearchField::create();
    field->setPlaceholder(std::string(100, 'm'));
    field->setFixedLength(220, Orientation::horizontal);
    row->addArrangedSubview(field);
    row->setFillsSuperview();
    window->contentView()->addSubview(row);
    show(window);
    ASSERT_TRUE(runUntil([&] { return field->frame().height > 0; }));
    EXPECT_EQ(field->frame().width, 220);
}

TEST_F(ViewTest, aViewThatExpandsTakesTheFreeRoomAndShrinksFirst) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto row = StackView::create(Orientation::horizontal, 10, {.left = 5, .right = 5});
    const auto field = TextField::create();
    const auto fixed = View::create();
    field->setExpands(Orientation::horizontal);
    fixed->setFixedLength(180, Orientation::horizontal);
    row->addArrangedSubview(field);
    row->addArrangedSubview(fixed);
    row->setFillsSuperview();
    window->contentView()->addSubview(row);
    show(window);
    EXPECT_TRUE(runUntil([&] { return field->frame().width == 400 && fixed->frame().x == 415; }));
    fixed->setFixedLength(550, Orientation::horizontal);
    EXPECT_TRUE(runUntil([&] { return field->frame().width < 100 && fixed->frame().width == 550; }));
}

TEST_F(ViewTest, showsATitleAsItStands) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto button = Button::create("_a <b>&amp;</b>", {}, TestAction::reload);
    window->contentView()->addSubview(button);
    show(window);
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(gtk_button_get_child(GTK_BUTTON(widgetOf(button))))),
                 "_a <b>&amp;</b>");
}

TEST_F(ViewTest, aToolTipThatIsTooLongIsCutWhereItIsShown) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto button = Button::create("Go", {}, TestAction::reload);
    window->contentView()->addSubview(button);
    show(window);
    const std::string longest(800, 'u');
    button->setToolTip(longest);
    EXPECT_TRUE(showsToolTip(*button, longest));
    const std::string middle(10000, 'u');
    button->setToolTip("begins " + middle + " ends");
    EXPECT_EQ(button->toolTip(), "begins " + middle + " ends");
    EXPECT_TRUE(
        showsToolTip(*button, "begins " + middle.substr(0, 393) + "…" + middle.substr(0, 395) + " ends"));
}

TEST_F(ViewTest, withoutAToolTipItShowsNone) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto button = Button::create("Go", {}, TestAction::reload);
    window->contentView()->addSubview(button);
    show(window);
    EXPECT_FALSE(gtk_widget_get_has_tooltip(widgetOf(button)));
    button->setToolTip("Go there");
    EXPECT_TRUE(showsToolTip(*button, "Go there"));
    button->setToolTip("");
    EXPECT_FALSE(gtk_widget_get_has_tooltip(widgetOf(button)));
}

TEST_F(ViewTest, aClickSendsTheActionToItsTarget) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto target = std::make_shared<Recorder>();
    const auto button = Button::create("Go", target, TestAction::openBookmark);
    const Control* sender = nullptr;
    target->whenPerformed = [&](const ActionSender& from) { sender = from.control; };
    window->contentView()->addSubview(button);
    show(window);
    g_signal_emit_by_name(widgetOf(button), "clicked");
    EXPECT_EQ(target->performed, std::vector{TestAction::openBookmark});
    EXPECT_EQ(sender, button.get());
}

TEST_F(ViewTest, aButtonMayBeLetGoByItsOwnAction) {
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto target = std::make_shared<Recorder>();
    auto button = Button::create("Go", target, TestAction::openBookmark);
    const std::weak_ptr<Button> weak = button;
    target->whenPerformed = [&](const ActionSender&) {
        button->removeFromSuperview();
        button.reset();
    };
    window->contentView()->addSubview(button);
    show(window);
    g_signal_emit_by_name(widgetOf(button), "clicked");
    EXPECT_TRUE(weak.expired());
    runPending();
}

TEST_F(ViewTest, aFrameOfALaidOutSubviewIsWhereTheWidgetIs) {
    class Half : public View {
    public:
        static std::shared_ptr<Half> create() {
            auto half = makeShared<Half>();
            half->addSubview(half->child);
            return half;
        }
        void layout() override { child->setFrame({0, 0, frame().width / 2, frame().height}); }
        std::shared_ptr<View> child = View::create();
    };
    const auto window = Window::create({.width = 600, .height = 400}, {});
    const auto half = Half::create();
    half->setFillsSuperview();
    window->contentView()->addSubview(half);
    show(window);
    ASSERT_TRUE(runUntil([&] { return half->child->frame().width == 300; }));
    ASSERT_TRUE(runUntil([&] { return gtk_widget_get_allocated_width(widgetOf(half->child)) == 300; }));
}

TEST(ViewDeathTest, anUnknownSymbolStopsTheProcess) {
    const auto button = Button::create();
    button->setImage({"no.such.symbol", ""});
    EXPECT_DEATH(
        {
            gtk_init();
            button->native();
        },
        "no.such.symbol");
}

TEST(ViewDeathTest, useOffTheMainThreadStopsTheProcess) {
    EXPECT_DEATH(std::thread([] { View::create(); }).join(), "main thread");
}

} // namespace Platform::Tests
