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
    /// The buttons' titles. The first button is the default one. Never empty.
    std::vector<std::string> buttonTitles{"OK"};

    static constexpr std::size_t firstButton = 0;

    /// Returns the index of the last button, which is the answer if the window closes.
    std::size_t safeButton() const;
    /// Returns the index of the button that Escape chooses: "Cancel", or the safe button if no button has
    /// that title.
    std::size_t escapeButton() const;

    /// Called exactly once with the index of the chosen button.
    using Completion = std::function<void(std::size_t button)>;

    /// Shows the alert as a sheet over `window` only. Other tabs and windows stay usable. Several sheets of a
    /// window are shown one after another.
    void beginSheetModal(const std::shared_ptr<Window>& window, Completion completion) const;

    /// Shows the alert by itself until the user answers it. Returns the index of the chosen button, or of the
    /// safe button if the alert ends without a choice.
    std::size_t runModal() const;
};

} // namespace Platform
