#pragma once

#include "Platform/AppKit/View.h"

#include <memory>

namespace Keyloft {

/// A thin line that shows the progress of a page load. `fill` covers the fraction `progress` of the bar's
/// width.
class ProgressBar : public Platform::View {
public:
    static std::shared_ptr<ProgressBar> create();

    const std::shared_ptr<Platform::View>& fill() const { return fill_; }

    /// The progress from 0 to 1, neither clamped nor animated. A change takes effect at the next layout.
    double progress() const { return progress_; }
    void setProgress(double progress);

    /// Returns true while the page is loading.
    bool isActive() const { return active_; }
    void setActive(bool active) { active_ = active; }

    void layout() override;

protected:
    ProgressBar()
        : View("ProgressBar") {}

private:
    std::shared_ptr<Platform::View> fill_ = Platform::View::create();
    double progress_ = 0;
    bool active_ = false;
};

} // namespace Keyloft
