#include "Platform/AppKit/SearchField.h"

#include "Platform/AppKit/linux/TextFieldNative.h"

namespace Platform {

std::shared_ptr<SearchField> SearchField::create() {
    struct Made : SearchField {};
    return std::make_shared<Made>();
}

std::unique_ptr<View::Native> SearchField::makeNative() {
    return std::make_unique<TextFieldEvents>(*this, gtk_search_entry_new());
}

} // namespace Platform
