#include "Keyloft/ProgressBar.h"

#include "Platform/Foundation/MakeShared.h"

namespace Keyloft {

std::shared_ptr<ProgressBar> ProgressBar::create() {
    auto bar = Platform::makeShared<ProgressBar>();
    bar->fill_->setBackgroundColor(Platform::Color::controlAccent);
    bar->fill_->setHidden(true);
    bar->fill_->setAccessibilityLabel("Loading");
    bar->fill_->setAccessibilityProgress(0);
    bar->addSubview(bar->fill_);
    return bar;
}

void ProgressBar::setProgress(double progress) {
    progress_ = progress;
    fill_->setAccessibilityProgress(progress);
}

void ProgressBar::layout() {
    View::layout();
    fill_->setFrame({.x = 0, .y = 0, .width = frame().width * progress_, .height = frame().height});
}

} // namespace Keyloft
