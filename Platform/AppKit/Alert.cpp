#include "Platform/AppKit/Alert.h"

#include <algorithm>

namespace Platform {

std::size_t Alert::safeButton() const { return buttonTitles.size() - 1; }

std::size_t Alert::escapeButton() const {
    const auto cancel = std::ranges::find(buttonTitles, "Cancel");
    return cancel == buttonTitles.end() ? safeButton()
                                        : static_cast<std::size_t>(cancel - buttonTitles.begin());
}

} // namespace Platform
