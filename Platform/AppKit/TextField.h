#pragma once

#include "Platform/AppKit/Control.h"

#include <string>

namespace Platform {

class TextField;

/// How an edit ended.
enum class TextMovement { other, returnKey, tab, backtab, cancel };

class TextFieldDelegate {
public:
    virtual ~TextFieldDelegate() = default;

    /// The user began to change the text: first typed character, pasted text or input method text. Setting
    /// the text from the program begins nothing.
    virtual void controlTextDidBeginEditing(TextField& field) = 0;

    /// The edit ended: Return (the field's action is sent right after), Escape, or another control of the
    /// same page took the focus. Another tab, window, menu or program does not end it. Told also where
    /// nothing was changed since the field had the focus, or since the last end.
    virtual void controlTextDidEndEditing(TextField& field, TextMovement movement) = 0;
};

/// One line of text that the user can edit; Return sends the action. Longer text scrolls and never widens the
/// field.
class TextField : public Control {
public:
    static std::shared_ptr<TextField> create();

    /// The current text, the user's changes included. Line feeds and carriage returns are dropped from what
    /// is set, typed, pasted or dropped: the field has one line.
    std::string stringValue() const;
    void setStringValue(const std::string& value);

    const std::string& placeholder() const { return placeholder_; }
    void setPlaceholder(const std::string& placeholder);

    void setDelegate(const std::weak_ptr<TextFieldDelegate>& delegate) { delegate_ = delegate; }

    /// Gives the field the focus with all its text selected.
    void selectText();

    bool isEditing() const { return editing_; }

    /// Undo, redo, cut, copy, paste and select all.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;

protected:
    TextField() = default;
    std::unique_ptr<Native> makeNative() override;
    void applyFont(Native& native) override;
    virtual bool isEmptiedByEscape() const { return false; }

private:
    friend struct TextFieldEvents;

    static std::string withoutLineBreaks(std::string text);
    static void applyStringValue(Native& native, const std::string& value);
    static void applyPlaceholder(Native& native, const std::string& placeholder);
    void beginEditing();
    void endEditing(TextMovement movement);
    /// Ends the edit as Escape does.
    void cancelEditing();

    std::string stringValue_;
    std::string placeholder_;
    std::weak_ptr<TextFieldDelegate> delegate_;
    bool editing_ = false;
};

/// A text field with the look of a search box. It sends the whole text, and only on Return; Escape empties
/// it.
class SearchField : public TextField {
public:
    static std::shared_ptr<SearchField> create();

protected:
    SearchField() = default;
    std::unique_ptr<Native> makeNative() override;
    bool isEmptiedByEscape() const override { return true; }
};

} // namespace Platform
