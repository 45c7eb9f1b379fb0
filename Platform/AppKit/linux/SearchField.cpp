#include "Platform/AppKit/SearchField.h"

#include "Platform/AppKit/linux/TextFieldNative.h"

namespace Platform {

std::shared_ptr<SearchField> SearchField::create() {
    struct Made : SearchField {};
    return std::make_shared<Made>();
}

std::unique_ptr<View::Native> SearchField::makeNative() {
    auto native = TextFieldEvents::make(*this, gtk_search_entry_new());
    native->connections.emplace_back(native->widget.get(), "stop-search",
                                     G_CALLBACK(+[](GtkSearchEntry* /*entry*/, gpointer self) {
                                         static_cast<SearchField*>(self)->setStringValue("");
                                     }),
                                     static_cast<SearchField*>(this));
    return native;
}

} // namespace Platform
