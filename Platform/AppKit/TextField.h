#pragma once

#include "Platform/AppKit/Control.h"

#include <string>

namespace Platform {

class TextField;

/// The reason why an edit ended.
enum class TextMovement { other, returnKey, tab, backtab, cancel };

class TextFieldDelegate {
public:
    virtual ~TextFieldDelegate() = default;

    /// Called when the user first edits the text, even with an input method. Not called by `setStringValue`.
    virtual void controlTextDidBeginEditing(TextField& field) = 0;

    /// Called when the user presses Return (right before the field's action is sent) or Escape, or when
    /// another control of the same window gets the focus. Opening a menu, or switching to another tab, window
    /// or program, does not end an edit. Also called if the text has not changed.
    virtual void controlTextDidEndEditing(TextField& field, TextMovement movement) = 0;
};

/// A single-line text field. Return sends the action. Long text scrolls and never widens the field.
class TextField : public Control {
public:
    static std::shared_ptr<TextField> create();

    /// The current text, including the user's changes. The field has only one line, so line feeds and
    /// carriage returns are removed from text that is set, typed, pasted or dropped.
    std::string stringValue() const;
    void setStringValue(const std::string& value);

    const std::string& placeholder() const { return placeholder_; }
    void setPlaceholder(const std::string& placeholder);

    void setDelegate(const std::weak_ptr<TextFieldDelegate>& delegate) { delegate_ = delegate; }

    /// Gives the field the focus and selects all its text.
    void selectText();

    bool isEditing() const { return editing_; }

    /// Implement the editing actions: undo, redo, cut, copy, paste and select all.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    void resignFirstResponder() override { endEditing(TextMovement::other); }

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
    /// Ends the edit as if the user had pressed Escape.
    void cancelEditing();

    std::string stringValue_;
    std::string placeholder_;
    std::weak_ptr<TextFieldDelegate> delegate_;
    bool editing_ = false;
};

/// A text field that looks like a search box. Sends its action only on Return. Escape clears it.
class SearchField : public TextField {
public:
    static std::shared_ptr<SearchField> create();

protected:
    SearchField() = default;
    std::unique_ptr<Native> makeNative() override;
    bool isEmptiedByEscape() const override { return true; }
};

} // namespace Platform
