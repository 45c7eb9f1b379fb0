#include "Platform/AppKit/TextField.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/AppKit/macos/TextFieldNative.h"
#include "Platform/Foundation/macos/Conversions.h"

@interface KeyloftTextFieldDelegate : NSObject <NSTextFieldDelegate>
@end

@implementation KeyloftTextFieldDelegate
- (void)controlTextDidBeginEditing:(NSNotification*)obj {
    Platform::TextFieldEvents::didBegin(obj.object);
}

- (void)controlTextDidChange:(NSNotification*)obj {
    Platform::TextFieldEvents::didChange(static_cast<NSTextField*>(obj.object));
}

- (void)controlTextDidEndEditing:(NSNotification*)obj {
    NSNumber* const movement = obj.userInfo[NSTextMovementUserInfoKey];
    Platform::TextFieldEvents::didEnd(obj.object, static_cast<NSTextMovement>(movement.integerValue));
}

- (BOOL)control:(NSControl*)control textView:(NSTextView*)textView doCommandBySelector:(SEL)commandSelector {
    return commandSelector == @selector(cancelOperation:) &&
           Platform::TextFieldEvents::cancelled(static_cast<NSTextField*>(control));
}
@end

namespace Platform {

namespace {

std::shared_ptr<TextField> textFieldOf(id field) {
    return std::dynamic_pointer_cast<TextField>(viewOf(field));
}

TextMovement fromNSTextMovement(NSTextMovement movement) {
    switch (movement) {
    case NSTextMovementReturn:
        return TextMovement::returnKey;
    case NSTextMovementTab:
        return TextMovement::tab;
    case NSTextMovementBacktab:
        return TextMovement::backtab;
    case NSTextMovementCancel:
        return TextMovement::cancel;
    default:
        return TextMovement::other;
    }
}

} // namespace

std::string TextField::stringValue() const {
    assertMainThread("TextField::stringValue");
    Native* const made = nativeIfMade();
    return made != nullptr ? fromNSString(TextFieldEvents::fieldOf(*made).stringValue) : stringValue_;
}

void TextField::applyStringValue(Native& native, const std::string& value) {
    TextFieldEvents::fieldOf(native).stringValue = toNSString(value);
}

void TextField::applyPlaceholder(Native& native, const std::string& placeholder) {
    TextFieldEvents::fieldOf(native).placeholderString = toNSString(placeholder);
}

void TextField::selectText() { [TextFieldEvents::fieldOf(native()) selectText:nil]; }

void TextField::perform(Action action, const ActionSender& /*sender*/) {
    // The field editor performs the actions that it implements, and passes undo and redo to its window.
    [[TextFieldEvents::fieldOf(native()) currentEditor] tryToPerform:selectorFor(action) with:nil];
}

std::unique_ptr<View::Native> TextField::makeNative() {
    NSTextField* const field = [[NSTextField alloc] initWithFrame:NSZeroRect];
    field.bezeled = YES;
    field.bezelStyle = NSTextFieldRoundedBezel;
    return TextFieldEvents::make(*this, field);
}

std::unique_ptr<View::Native> SearchField::makeNative() {
    NSSearchField* const field = [[NSSearchField alloc] initWithFrame:NSZeroRect];
    field.sendsWholeSearchString = YES;
    field.sendsSearchStringImmediately = NO;
    return TextFieldEvents::make(*this, field);
}

void TextField::applyFont(Native& native) { ControlNative::of(native).applyFont(*this); }

std::unique_ptr<View::Native> TextFieldEvents::make(const TextField& field, NSTextField* made) {
    auto native = std::make_unique<Native>(made);
    NSCell* const cell = made.cell;
    cell.usesSingleLineMode = YES;
    cell.scrollable = YES;
    cell.lineBreakMode = NSLineBreakByTruncatingTail;
    // Send the action on Return only, not at the end of every edit.
    cell.sendsActionOnEndEditing = NO;
    made.placeholderString = toNSString(field.placeholder());
    made.stringValue = toNSString(field.stringValue());
    native->delegate = [[KeyloftTextFieldDelegate alloc] init];
    made.delegate = native->delegate;
    native->takeOver(field);
    return native;
}

void TextFieldEvents::didBegin(id field) noexcept {
    if (const auto edited = textFieldOf(field)) {
        edited->beginEditing();
    }
}

/// Removes line breaks from pasted or dropped text. Single-line mode only hides them.
void TextFieldEvents::didChange(NSTextField* field) noexcept {
    NSText* const editor = [field currentEditor];
    const std::string text = fromNSString(editor.string);
    const std::string line = TextField::withoutLineBreaks(text);
    if (line == text) {
        return;
    }
    NSString* const before = [editor.string substringToIndex:editor.selectedRange.location];
    const auto insertionPoint = toNSString(TextField::withoutLineBreaks(fromNSString(before))).length;
    editor.string = toNSString(line);
    editor.selectedRange = NSMakeRange(insertionPoint, 0);
}

void TextFieldEvents::didEnd(id field, NSTextMovement movement) noexcept {
    if (const auto edited = textFieldOf(field)) {
        edited->endEditing(fromNSTextMovement(movement));
    }
}

bool TextFieldEvents::cancelled(NSTextField* field) noexcept {
    const auto edited = textFieldOf(field);
    if (edited == nullptr) {
        return false;
    }
    // Also end the edit in AppKit, so that the next change begins a new edit.
    [field abortEditing];
    edited->cancelEditing();
    return true;
}

} // namespace Platform
