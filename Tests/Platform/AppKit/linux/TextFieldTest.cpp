#include "Platform/AppKit/TextField.h"

#include "Platform/AppKit/StackView.h"
#include "Platform/AppKit/linux/TextFieldNative.h"
#include "Tests/Platform/AppKit/linux/AppKitFixture.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/linux/Xdotool.h"

namespace Platform::Tests {

using TestSupport::runPending;
using TestSupport::runUntil;

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
        // Start the window manager before the window is shown. A window manager does not focus windows that
        // are already open when it starts.
        TestSupport::startWindowManager();
        const auto row = StackView::create(Orientation::horizontal);
        row->addArrangedSubview(field);
        row->addArrangedSubview(other);
        window->contentView()->addSubview(row);
        field->setDelegate(edits);
        field->setTarget(target, TestAction::navigateFromAddressField);
        show(window);
    }

    /// Gives the field the keyboard focus, so that it receives real key presses.
    void activate(const std::shared_ptr<TextField>& wanted) const {
        wanted->selectText();
        GtkWindow* toplevel = TabHost::of(*window)->toplevel();
        ASSERT_TRUE(runUntil([&] {
            return gtk_window_is_active(toplevel) &&
                   viewOfWidget(gtk_window_get_focus(toplevel)) == wanted.get();
        }));
    }

    static void pressKey(const std::string& key) { TestSupport::runXdotool({"key", key}); }

    static void copy(const std::string& text) {
        gdk_clipboard_set_text(gdk_display_get_clipboard(gdk_display_get_default()), text.c_str());
    }

    static std::string selection(const std::shared_ptr<TextField>& in) {
        int start = 0;
        int end = 0;
        gtk_editable_get_selection_bounds(GTK_EDITABLE(widgetOf(in)), &start, &end);
        return in->stringValue().substr(static_cast<std::size_t>(start),
                                        static_cast<std::size_t>(end - start));
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
    EXPECT_EQ(target->performed, std::vector{TestAction::navigateFromAddressField});
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
    activate(field);
    typeInto(field, "abc");
    pressKey("Escape");
    ASSERT_TRUE(runUntil([&] { return edits->events == Events{"begin", "end by Escape"}; }));
    EXPECT_EQ(selection(field), "abc");
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
    auto& native = static_cast<TextFieldEvents&>(field->native());
    g_signal_emit_by_name(native.text, "preedit-changed", "");
    EXPECT_FALSE(field->isEditing());
    g_signal_emit_by_name(native.text, "preedit-changed", "に");
    EXPECT_TRUE(field->isEditing());
}

TEST_F(TextFieldTest, lineBreaksAreDroppedFromTextThatIsSet) {
    field->setStringValue("one\r\ntwo");
    EXPECT_EQ(field->stringValue(), "onetwo");
}

TEST_F(TextFieldTest, lineBreaksAreDroppedFromPastedText) {
    field->setStringValue("<>");
    activate(field);
    pressKey("Home");
    pressKey("Right");
    copy("one\r\ntwo\n");
    pressKey("ctrl+v");
    EXPECT_TRUE(runUntil([&] { return field->stringValue() == "<onetwo>"; })) << field->stringValue();
    EXPECT_STREQ(gtk_editable_get_text(GTK_EDITABLE(widgetOf(field))), "<onetwo>");
    EXPECT_EQ(edits->events, Events{"begin"});
    pressKey("x");
    EXPECT_TRUE(runUntil([&] { return field->stringValue() == "<onetwox>"; })) << field->stringValue();
}

TEST_F(TextFieldTest, aPasteOfNothingButLineBreaksIsNoEdit) {
    activate(field);
    copy("\r\n");
    pressKey("ctrl+v");
    pressKey("x");
    ASSERT_TRUE(runUntil([&] { return !field->stringValue().empty(); }));
    EXPECT_EQ(field->stringValue(), "x");
}

// GTK calls `gtk_editable_insert_text` to insert dropped text and text from an input method.
TEST_F(TextFieldTest, lineBreaksAreDroppedFromTextThatGTKInserts) {
    typeInto(field, "one\ntwo");
    EXPECT_EQ(field->stringValue(), "onetwo");
    int position = 3;
    gtk_editable_insert_text(GTK_EDITABLE(widgetOf(field)), "\r1\n2 and more", 4, &position);
    EXPECT_EQ(field->stringValue(), "one12two");
    EXPECT_EQ(position, 5);
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

TEST_F(TextFieldTest, performsEveryEditingAction) {
    EXPECT_FALSE(field->respondsTo(TestAction::reload));
    activate(field);
    typeInto(field, "text");
    const auto expectText = [&](const std::string& text) {
        EXPECT_TRUE(runUntil([&] { return field->stringValue() == text; })) << field->stringValue();
    };
    const auto perform = [&](Action action) {
        ASSERT_TRUE(field->respondsTo(action));
        field->perform(action, {});
    };
    perform(StandardAction::selectAll);
    EXPECT_EQ(selection(field), "text");
    perform(StandardAction::cut);
    expectText("");
    perform(StandardAction::paste);
    expectText("text");
    perform(StandardAction::undo);
    expectText("");
    perform(StandardAction::redo);
    expectText("text");
    gtk_editable_select_region(GTK_EDITABLE(widgetOf(field)), 0, 1);
    perform(StandardAction::copy);
    gtk_editable_set_position(GTK_EDITABLE(widgetOf(field)), -1);
    perform(StandardAction::paste);
    expectText("textt");
}

TEST_F(TextFieldTest, anEditingActionBeforeTheFirstShowingDoesNothing) {
    const auto late = TextField::create();
    late->setStringValue("text");
    for (const Action action :
         {StandardAction::selectAll, StandardAction::cut, StandardAction::paste, StandardAction::undo}) {
        late->perform(action, {});
    }
    EXPECT_EQ(late->nativeIfMade(), nullptr);
    EXPECT_EQ(late->stringValue(), "text");
}

TEST_F(TextFieldTest, escapeEmptiesASearchField) {
    const auto search = SearchField::create();
    search->setDelegate(edits);
    search->setTarget(target, TestAction::searchFromSearchField);
    window->contentView()->addSubview(search);
    ASSERT_TRUE(runUntil([&] { return widgetOf(search) && gtk_widget_get_mapped(widgetOf(search)); }));
    activate(search);
    edits->events.clear();
    for (const char* key : {"a", "b", "Escape"}) {
        pressKey(key);
    }
    ASSERT_TRUE(runUntil([&] { return edits->events == Events{"begin", "end by Escape"}; }));
    EXPECT_EQ(search->stringValue(), "");
    EXPECT_STREQ(gtk_editable_get_text(GTK_EDITABLE(widgetOf(search))), "");
    EXPECT_FALSE(search->isEditing());
    EXPECT_TRUE(target->performed.empty());
    // Escape does not move the focus away from the search field.
    pressKey("c");
    EXPECT_TRUE(runUntil([&] { return search->stringValue() == "c"; }));
}

} // namespace Platform::Tests
