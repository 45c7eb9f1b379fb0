#include "Platform/AppKit/SearchField.h"

#include "Platform/AppKit/macos/TextFieldNative.h"

namespace Platform {

std::shared_ptr<SearchField> SearchField::create() {
    struct Made : SearchField {};
    return std::make_shared<Made>();
}

std::unique_ptr<View::Native> SearchField::makeNative() {
    NSSearchField* const field = [[NSSearchField alloc] initWithFrame:NSZeroRect];
    field.sendsWholeSearchString = YES;
    field.sendsSearchStringImmediately = NO;
    return TextFieldEvents::make(*this, field);
}

} // namespace Platform
