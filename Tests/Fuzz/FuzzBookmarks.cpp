#include "KeyloftBrowserKit/Bookmark.h"
#include "Platform/Foundation/FatalError.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using KeyloftBrowserKit::Bookmark;

    const auto bookmarks = Bookmark::decode({reinterpret_cast<const char*>(data), size});
    if (!bookmarks) {
        return 0;
    }
    const auto again = Bookmark::decode(Bookmark::encode(*bookmarks));
    if (again != bookmarks) {
        Platform::fatalError("a saved list does not decode to itself");
    }
    return 0;
}
