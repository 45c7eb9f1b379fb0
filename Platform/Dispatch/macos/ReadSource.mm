#include "Platform/Dispatch/ReadSource.h"

#include "Platform/Dispatch/macos/QueueState.h"

#include <utility>

namespace Platform {

ReadSource::State::State(const std::shared_ptr<SerialQueue::State>& serialQueue, int descriptor)
    : source(dispatch_source_create(DISPATCH_SOURCE_TYPE_READ, static_cast<uintptr_t>(descriptor), 0,
                                    serialQueue->queue))
    , queue(serialQueue) {}

/// Activates the source after setting its handlers, whose blocks keep this state alive until the cancellation
/// is complete. Dispatch requires that a source is activated before it is released, even if it is cancelled.
void ReadSource::State::start() {
    const auto self = shared_from_this();
    dispatch_source_set_event_handler(source, ^{
        self->fired();
    });
    dispatch_source_set_cancel_handler(source, ^{
        self->retire();
    });
    dispatch_activate(source);
}

void ReadSource::State::fired() noexcept {
    if (eventHandler) {
        eventHandler();
    }
}

void ReadSource::State::retire() noexcept {
    if (cancelHandler) {
        cancelHandler();
    }
    eventHandler = nullptr;
    cancelHandler = nullptr;
    if (const auto owner = queue.lock()) {
        owner->remove(*this);
    }
}

void ReadSource::State::resume() {
    const std::scoped_lock lock(mutex);
    if (cancelled || stage == Stage::running) {
        return;
    }
    if (std::exchange(stage, Stage::running) == Stage::idle) {
        start();
    } else {
        dispatch_resume(source);
    }
}

void ReadSource::State::suspend() {
    const std::scoped_lock lock(mutex);
    if (!cancelled && stage == Stage::running) {
        stage = Stage::suspended;
        dispatch_suspend(source);
    }
}

void ReadSource::State::cancel() {
    const std::scoped_lock lock(mutex);
    if (std::exchange(cancelled, true)) {
        return;
    }
    dispatch_source_cancel(source);
    // Dispatch does not call the cancel handler of a source that is inactive or suspended.
    if (stage == Stage::idle) {
        start();
    } else if (stage == Stage::suspended) {
        dispatch_resume(source);
    }
}

ReadSource::ReadSource(SerialQueue& queue, int descriptor)
    : state_(std::make_shared<State>(queue.state_, descriptor)) {
    queue.state_->add(state_);
}

ReadSource::~ReadSource() { cancel(); }
void ReadSource::setEventHandler(Handler handler) { state_->eventHandler = std::move(handler); }
void ReadSource::setCancelHandler(Handler handler) { state_->cancelHandler = std::move(handler); }
void ReadSource::resume() { state_->resume(); }
void ReadSource::suspend() { state_->suspend(); }
void ReadSource::cancel() { state_->cancel(); }

bool ReadSource::isCancelled() const {
    const std::scoped_lock lock(state_->mutex);
    return state_->cancelled;
}

} // namespace Platform
