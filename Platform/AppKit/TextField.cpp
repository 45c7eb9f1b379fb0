#include "Platform/AppKit/TextField.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/Foundation/MakeShared.h"

namespace Platform {

std::shared_ptr<TextField> TextField::create() { return makeShared<TextField>(); }
std::shared_ptr<SearchField> SearchField::create() { return makeShared<SearchField>(); }
bool TextField::respondsTo(Action action) const { return Platform::isEditing(action); }

void TextField::setStringValue(const std::string& value) {
    assertMainThread("TextField::setStringValue");
    const std::string line = withoutLineBreaks(value);
    // Setting the same string again would move the insertion point.
    if (stringValue() == line) {
        return;
    }
    stringValue_ = line;
    if (Native* const made = nativeIfMade()) {
        applyStringValue(*made, line);
    }
}

void TextField::setPlaceholder(const std::string& placeholder) {
    assertMainThread("TextField::setPlaceholder");
    placeholder_ = placeholder;
    if (Native* const made = nativeIfMade()) {
        applyPlaceholder(*made, placeholder);
    }
}

std::string TextField::withoutLineBreaks(std::string text) {
    std::erase_if(text, [](char c) { return c == '\n' || c == '\r'; });
    return text;
}

void TextField::beginEditing() {
    if (editing_) {
        return;
    }
    editing_ = true;
    if (const auto delegate = delegate_.lock()) {
        delegate->controlTextDidBeginEditing(*this);
    }
}

void TextField::endEditing(TextMovement movement) {
    editing_ = false;
    if (const auto delegate = delegate_.lock()) {
        delegate->controlTextDidEndEditing(*this, movement);
    }
}

void TextField::cancelEditing() {
    if (isEmptiedByEscape()) {
        setStringValue("");
    }
    endEditing(TextMovement::cancel);
    selectText();
}

} // namespace Platform
