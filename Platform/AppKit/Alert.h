#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Platform {

/// A message with buttons, shown as a sheet on a window or as a modal dialog. A plain value type.
struct Alert {
    enum class Style { warning, informational };

    Style style = Style::warning;
    std::string messageText;
    std::string informativeText;
    /// The titles of the buttons. The first button is the default button. Must not be empty.
    std::vector<std::string> buttonTitles{"OK"};

    static constexpr std::size_t firstButton = 0;

    /// Returns the index of the last button, which is reported if the alert is closed without a choice.
    std::size_t safeButton() const { return buttonTitles.size() - 1; }
    /// Returns the index of the button that Escape activates: "Cancel" if it exists, or else the safe button.
    std::size_t escapeButton() const {
        const auto cancel = std::ranges::find(buttonTitles, "Cancel");
        return cancel == buttonTitles.end() ? safeButton()
                                            : static_cast<std::size_t>(cancel - buttonTitles.begin());
    }

    /// Called exactly once with the index of the chosen button.
    using Completion = std::function<void(std::size_t button)>;

    /// Shows the alert as a modal dialog and waits until the user answers it. Returns the index of the chosen
    /// button, or of the safe button if the dialog is closed without a choice.
    std::size_t runModal() const;
};

} // namespace Platform
