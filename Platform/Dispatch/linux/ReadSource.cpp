#include "Platform/Dispatch/ReadSource.h"

#include "Platform/Dispatch/linux/QueueState.h"

#include <utility>

namespace Platform {

ReadSource::ReadSource(SerialQueue& queue, int descriptor)
    : state_(std::make_shared<State>()) {
    state_->descriptor = descriptor;
    state_->queue = queue.state_;
    queue.state_->add(state_);
}

ReadSource::~ReadSource() { cancel(); }
void ReadSource::setEventHandler(Handler handler) { state_->eventHandler = std::move(handler); }
void ReadSource::setCancelHandler(Handler handler) { state_->cancelHandler = std::move(handler); }

void ReadSource::resume() {
    if (!state_->wanted.exchange(true)) {
        if (const auto queue = state_->queue.lock()) {
            queue->sourceChanged();
        }
    }
}

void ReadSource::suspend() {
    if (state_->wanted.exchange(false)) {
        if (const auto queue = state_->queue.lock()) {
            queue->sourceChanged();
        }
    }
}

void ReadSource::cancel() {
    if (!state_->cancelled.exchange(true)) {
        if (const auto queue = state_->queue.lock()) {
            queue->sourceChanged();
        }
    }
}

bool ReadSource::isCancelled() const { return state_->cancelled; }

} // namespace Platform
