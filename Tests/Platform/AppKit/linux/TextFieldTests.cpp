#include "Platform/AppKit/SearchField.h"
#include "Platform/AppKit/StackView.h"
#include "Platform/AppKit/linux/TextFieldNative.h"
#include "Tests/Platform/AppKit/linux/AppKitFixture.h"

namespace Platform::Tests {

using TestSupport::runPending;

namespace {

struct EditRecorder : TextFieldDelegate {
    void controlTextDidBeginEditing(TextField& /*field*/) override { events.emplace_back("begin"); }
    void controlTextDidEndEditing(TextField& /*field*/, TextMovement movement) override {
        switch (movement) {
        case TextMovement::returnKey:
            events.emplace_back("end by Return");
            break;
        case TextMovement::cancel:
            events.emplace_back("end by Escape");
            break;
        default:
            events.emplace_back("end");
        }
    }
    std::vector<std::string> events;
};

using Events = std::vector<std::string>;

class TextFieldTest : public AppKitTest {
protected:
    TextFieldTest() {
        const auto row = StackView::create(Orientation::horizontal);
        row->addArrangedSubview(field);
        row->addArrangedSubview(other);
        window->contentView()->addSubview(row);
        field->setDelegate(edits);
        field->setTarget(target, Action::navigateFromAddressField);
        show(window);
    }

    static bool pressKey(const std::shared_ptr<TextField>& into, guint key) {
        // The field's own controller, as the toolkit calls it for a key that nobody took before.
        gboolean handled = FALSE;
        const auto list = GObjectPtr<GListModel>::adopt(gtk_widget_observe_controllers(widgetOf(into)));
        for (guint i = 0; i < g_list_model_get_n_items(list.get()); ++i) {
            const auto controller =
                GObjectPtr<GObject>::adopt(G_OBJECT(g_list_model_get_item(list.get(), i)));
            if (GTK_IS_EVENT_CONTROLLER_KEY(controller.get()))
                g_signal_emit_by_name(controller.get(), "key-pressed", key, 0, 0, &handled);
        }
        return handled;
    }

    std::shared_ptr<Window> window = Window::create({.width = 600, .height = 400}, {});
    std::shared_ptr<TextField> field = TextField::create();
    std::shared_ptr<TextField> other = TextField::create();
    std::shared_ptr<EditRecorder> edits = std::make_shared<EditRecorder>();
    std::shared_ptr<Recorder> target = std::make_shared<Recorder>();
};

} // namespace

TEST_F(TextFieldTest, textThatTheProgramSetsBeginsNothing) {
    field->setStringValue("set");
    EXPECT_EQ(field->stringValue(), "set");
    EXPECT_FALSE(field->isEditing());
    EXPECT_EQ(edits->events, Events{});
}

TEST_F(TextFieldTest, theFirstChangeBeginsTheEditAndFurtherOnesDoNot) {
    typeInto(field, "a");
    typeInto(field, "b");
    EXPECT_EQ(field->stringValue(), "ab");
    EXPECT_TRUE(field->isEditing());
    EXPECT_EQ(edits->events, Events{"begin"});
}

TEST_F(TextFieldTest, returnEndsTheEditAndThenSendsTheAction) {
    typeInto(field, "a");
    bool editingWhenSent = true;
    target->whenPerformed = [&](const ActionSender&) { editingWhenSent = field->isEditing(); };
    g_signal_emit_by_name(widgetOf(field), "activate");
    EXPECT_EQ(edits->events, (Events{"begin", "end by Return"}));
    EXPECT_EQ(target->performed, std::vector{Action::navigateFromAddressField});
    EXPECT_FALSE(editingWhenSent);
}

TEST_F(TextFieldTest, anotherControlOfThePageEndsTheEdit) {
    field->selectText();
    typeInto(field, "a");
    window->makeFirstResponder(other);
    EXPECT_EQ(edits->events, (Events{"begin", "end"}));
    EXPECT_TRUE(target->performed.empty());
}

TEST_F(TextFieldTest, escapeEndsTheEditAndSelectsTheText) {
    field->selectText();
    typeInto(field, "abc");
    EXPECT_TRUE(pressKey(field, GDK_KEY_Escape));
    EXPECT_EQ(edits->events, (Events{"begin", "end by Escape"}));
    int start = -1;
    int end = -1;
    EXPECT_TRUE(gtk_editable_get_selection_bounds(GTK_EDITABLE(widgetOf(field)), &start, &end));
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, 3);
}

TEST_F(TextFieldTest, anotherTabNeitherEndsNorBeginsAnEdit) {
    field->selectText();
    typeInto(field, "half");
    const auto second = Window::create({.width = 600, .height = 400}, {});
    const auto secondField = TextField::create();
    second->contentView()->addSubview(secondField);
    window->addTabbedWindow(second);
    show(second);
    secondField->selectText();
    runPending();
    EXPECT_TRUE(field->isEditing());
    EXPECT_EQ(edits->events, Events{"begin"});

    show(window);
    runPending();
    EXPECT_TRUE(field->isEditing());
    EXPECT_EQ(field->stringValue(), "half");
    EXPECT_EQ(window->firstResponder(), field);
    EXPECT_EQ(edits->events, Events{"begin"});
}

TEST_F(TextFieldTest, inputMethodTextBeginsTheEdit) {
    auto& native = static_cast<TextFieldEvents::Native&>(field->native());
    g_signal_emit_by_name(native.text, "preedit-changed", "");
    EXPECT_FALSE(field->isEditing());
    g_signal_emit_by_name(native.text, "preedit-changed", "に");
    EXPECT_TRUE(field->isEditing());
}

TEST_F(TextFieldTest, lineBreaksAreDropped) {
    field->setStringValue("one\r\ntwo");
    EXPECT_EQ(field->stringValue(), "onetwo");
}

TEST_F(TextFieldTest, keepsTextThatWasSetBeforeItWasShown) {
    const auto late = TextField::create();
    late->setStringValue("early");
    window->contentView()->addSubview(late);
    ASSERT_TRUE(TestSupport::runUntil([&] { return widgetOf(late) != nullptr; }));
    EXPECT_STREQ(gtk_editable_get_text(GTK_EDITABLE(widgetOf(late))), "early");
    EXPECT_FALSE(late->isEditing());
}

TEST_F(TextFieldTest, aLongTextAsksForNoMoreRoom) {
    int before = 0;
    gtk_widget_measure(widgetOf(field), GTK_ORIENTATION_HORIZONTAL, -1, &before, nullptr, nullptr, nullptr);
    field->setStringValue(std::string(5000, 'w'));
    int after = 0;
    gtk_widget_measure(widgetOf(field), GTK_ORIENTATION_HORIZONTAL, -1, &after, nullptr, nullptr, nullptr);
    EXPECT_EQ(after, before);
}

TEST_F(TextFieldTest, performsEditingActions) {
    field->setStringValue("text");
    EXPECT_TRUE(field->respondsTo(Action::selectAll));
    EXPECT_FALSE(field->respondsTo(Action::reload));
    field->perform(Action::selectAll, {});
    int start = -1;
    int end = -1;
    gtk_editable_get_selection_bounds(GTK_EDITABLE(widgetOf(field)), &start, &end);
    EXPECT_EQ(end - start, 4);
}

TEST_F(TextFieldTest, escapeEmptiesASearchField) {
    const auto search = SearchField::create();
    window->contentView()->addSubview(search);
    ASSERT_TRUE(TestSupport::runUntil([&] { return widgetOf(search) != nullptr; }));
    typeInto(search, "words");
    EXPECT_EQ(search->stringValue(), "words");
    g_signal_emit_by_name(widgetOf(search), "stop-search");
    EXPECT_EQ(search->stringValue(), "");
    EXPECT_STREQ(gtk_editable_get_text(GTK_EDITABLE(widgetOf(search))), "");
}

} // namespace Platform::Tests
