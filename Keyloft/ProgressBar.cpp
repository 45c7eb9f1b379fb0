#include "Keyloft/ProgressBar.h"

namespace Keyloft {

std::shared_ptr<ProgressBar> ProgressBar::create() {
    struct Made : ProgressBar {};
    auto bar = std::make_shared<Made>();
    bar->fill_->setBackgroundColor(Platform::Color::controlAccent);
    bar->fill_->setHidden(true);
    bar->addSubview(bar->fill_);
    return bar;
}

void ProgressBar::layout() {
    View::layout();
    fill_->setFrame({.x = 0, .y = 0, .width = frame().width * progress_, .height = frame().height});
}

} // namespace Keyloft
