#include "Platform/WebKit/linux/WebProcessSlots.h"

#include "Platform/Foundation/RunLoop.h"

#include <algorithm>
#include <utility>

namespace Platform {

const std::shared_ptr<WebProcessSlots>& WebProcessSlots::shared() {
    static const auto slots = std::make_shared<WebProcessSlots>(150, 10);
    return slots;
}

/// Returns the distinct processes, ordered by the last slot in `slots_` that holds each process.
std::vector<const Timer*> WebProcessSlots::processes() const {
    std::vector<const Timer*> processes;
    for (const auto* slot : slots_) {
        std::erase(processes, slot->process_.get());
        processes.push_back(slot->process_.get());
    }
    std::erase(processes, nullptr);
    return processes;
}

bool WebProcessSlots::canStart(bool isVisible) const {
    const auto all = processes();
    const auto starting = std::ranges::count_if(all, &Timer::isValid);
    return (starting == 0 && all.size() < limit_) || (isVisible && starting < 2);
}

WebProcessSlot* WebProcessSlots::nextWaiting() const {
    WebProcessSlot* next = nullptr;
    for (auto* slot : slots_) {
        if (slot->isWaiting() && (!next || (slot->isVisible() && !next->isVisible()))) {
            next = slot;
        }
    }
    return next;
}

void WebProcessSlots::grantSoon() {
    RunLoop::main().perform([weak = weak_from_this()] {
        const auto slots = weak.lock();
        auto* const next = slots ? slots->nextWaiting() : nullptr;
        if (next && slots->canStart(next->isVisible())) {
            next->grant();
        }
    });
}

void WebProcessSlots::makeRoom() {
    const auto all = processes();
    const auto victim = std::ranges::find_if(all, [this](const auto* process) {
        return !process->isValid() && std::ranges::all_of(slots_, [process](const auto* slot) {
            return slot->process_.get() != process || (!slot->isVisible() && slot->isEvictable_());
        });
    });
    if (all.size() >= limit_ && victim != all.end()) {
        isEvicting_ = true;
        const auto holds = [victim](const auto* slot) { return slot->process_.get() == *victim; };
        (*std::ranges::find_if(slots_, holds))->evict_();
        isEvicting_ = false;
    }
}

WebProcessSlot::WebProcessSlot(std::shared_ptr<WebProcessSlots> slots, std::function<bool()> isEvictable,
                               std::function<void()> evict)
    : slots_(std::move(slots))
    , isEvictable_(std::move(isEvictable))
    , evict_(std::move(evict)) {
    slots_->slots_.push_back(this);
}

WebProcessSlot::~WebProcessSlot() {
    std::erase(slots_->slots_, this);
    release();
}

void WebProcessSlot::request(std::function<void()> granted) {
    granted_ = std::move(granted);
    // When many tabs are opened in a row, each tab is briefly visible. Start a process immediately only if a
    // hidden view could start one; `grantSoon` gives precedence to visible views.
    if (process_ || (slots_->nextWaiting() == this && slots_->canStart(false))) {
        grant();
    } else {
        slots_->grantSoon();
    }
}

bool WebProcessSlot::tryAcquire() {
    if (!process_ && slots_->canStart(isVisible_)) {
        start();
    }
    return process_ != nullptr;
}

void WebProcessSlot::release() {
    if (std::exchange(process_, nullptr)) {
        slots_->grantSoon();
    }
}

void WebProcessSlot::processStarted() {
    if (process_ && process_->isValid()) {
        process_->invalidate();
        slots_->grantSoon();
    }
}

void WebProcessSlot::processReplaced() {
    // If no other view uses the previous process, that process exits and `process_` represents the new one.
    if (process_.use_count() > 1) {
        start();
        processStarted();
    }
}

void WebProcessSlot::setVisible(bool visible) {
    isVisible_ = visible;
    std::erase(slots_->slots_, this);
    slots_->slots_.push_back(this);
    slots_->grantSoon();
}

void WebProcessSlot::start() {
    slots_->makeRoom();
    process_ = Timer::scheduled(slots_->startTimeout_, false, [slots = slots_] { slots->grantSoon(); });
}

void WebProcessSlot::grant() {
    const auto granted = std::exchange(granted_, nullptr);
    if (!process_) {
        start();
    }
    granted();
}

} // namespace Platform
