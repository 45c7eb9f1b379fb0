#pragma once

#include "Platform/AppKit/Window.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Platform {

/// A message with buttons, shown as a sheet on one window or tab. A value: showing it copies it. Main thread
/// only.
struct Alert {
    enum class Style { warning, informational };

    Style style = Style::warning;
    std::string messageText;
    std::string informativeText;
    /// In the order given; the first is the default button. None means a single "OK".
    std::vector<std::string> buttonTitles;

    static constexpr std::size_t firstButton = 0;

    /// Called exactly once with the index of the chosen button. Escape chooses "Cancel" when there is such a
    /// button, else the only one; a window that closes chooses the last.
    using Completion = std::function<void(std::size_t button)>;

    /// Shows the sheet over `window`'s page only; several queue up. Other tabs and windows stay usable.
    void beginSheetModal(const std::shared_ptr<Window>& window, Completion completion) const;

    /// Shows the alert by itself and returns when it was answered.
    std::size_t runModal() const;
};

} // namespace Platform
