#include "Platform/AppKit/SheetQueue.h"

#include <utility>

namespace Platform {

namespace {

void complete(const Alert::Completion& completion, std::size_t button) {
    if (completion) {
        completion(button);
    }
}

} // namespace

void SheetQueue::add(const Alert& alert, Alert::Completion completion) {
    if (isClosed_) {
        complete(completion, alert.safeButton());
        return;
    }
    sheets_.push_back({.alert = alert, .completion = std::move(completion)});
    showFirst();
}

void SheetQueue::showFirst() {
    if (!isFirstShown_ && !sheets_.empty()) {
        isFirstShown_ = presenter_.showSheet(sheets_.front().alert);
    }
}

void SheetQueue::answer(std::size_t button) {
    if (!std::exchange(isFirstShown_, false)) {
        return;
    }
    const Sheet answered = std::move(sheets_.front());
    sheets_.pop_front();
    presenter_.hideSheet();
    showFirst();
    complete(answered.completion, button);
}

void SheetQueue::close() {
    isClosed_ = true;
    const auto unanswered = std::exchange(sheets_, {});
    if (std::exchange(isFirstShown_, false)) {
        presenter_.hideSheet();
    }
    for (const Sheet& sheet : unanswered) {
        complete(sheet.completion, sheet.alert.safeButton());
    }
}

} // namespace Platform
