#include "Platform/AppKit/TextField.h"

namespace Platform {

std::shared_ptr<TextField> TextField::create() {
    struct Made : TextField {};
    return std::make_shared<Made>();
}

bool TextField::respondsTo(Action action) const { return Platform::isEditing(action); }

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

} // namespace Platform
