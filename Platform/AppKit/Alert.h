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
    /// In the order given; the first is the default button. Never empty.
    std::vector<std::string> buttonTitles{"OK"};

    static constexpr std::size_t firstButton = 0;

    /// The answer of a window that closes: the last button.
    std::size_t safeButton() const;
    /// "Cancel" if there is such a button, else the safe button.
    std::size_t escapeButton() const;

    /// Called exactly once with the index of the chosen button.
    using Completion = std::function<void(std::size_t button)>;

    /// Shows the sheet over `window`'s page only; several queue up. Other tabs and windows stay usable.
    void beginSheetModal(const std::shared_ptr<Window>& window, Completion completion) const;

    /// Shows the alert by itself and returns when it was answered.
    std::size_t runModal() const;
};

} // namespace Platform
