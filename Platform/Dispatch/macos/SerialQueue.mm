#include "Platform/Dispatch/SerialQueue.h"

#include "Platform/Dispatch/macos/QueueState.h"
#include "Platform/Foundation/FatalError.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Platform {

namespace {

/// The key under which each dispatch queue stores its own address.
constexpr char identityKey = 0;

/// The maximum delay. Exceeds the lifetime of any process, but is representable in nanoseconds.
constexpr std::chrono::milliseconds longestDelay = std::chrono::hours(24 * 365 * 100);

/// Runs `item` and destroys it on the queue.
void perform(SerialQueue::Work& item) noexcept {
    item();
    item = nullptr;
}

} // namespace

SerialQueue::State::State(std::string name)
    : label(std::move(name))
    , queue(dispatch_queue_create(label.c_str(), DISPATCH_QUEUE_SERIAL)) {
    dispatch_queue_set_specific(queue, &identityKey, (__bridge void*)queue, nullptr);
}

bool SerialQueue::State::isCurrent() const {
    return dispatch_get_specific(&identityKey) == (__bridge void*)queue;
}

void SerialQueue::State::enqueue(Work item) {
    const auto shared = std::make_shared<Work>(std::move(item));
    dispatch_async(queue, ^{
        perform(*shared);
    });
}

void SerialQueue::State::enqueueAfter(std::chrono::milliseconds delay, Work item) {
    const auto shared = std::make_shared<Work>(std::move(item));
    {
        const std::scoped_lock lock(mutex_);
        delayed_.insert(shared);
    }
    const auto usable = std::clamp(delay, std::chrono::milliseconds::zero(), longestDelay);
    const auto self = weak_from_this();
    const std::weak_ptr<Work> weakItem = shared;
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, std::chrono::nanoseconds(usable).count()), queue, ^{
        const auto state = self.lock();
        const auto due = weakItem.lock();
        if (state != nullptr && due != nullptr) {
            state->performDelayed(due);
        }
    });
}

void SerialQueue::State::performDelayed(const std::shared_ptr<Work>& item) {
    {
        const std::scoped_lock lock(mutex_);
        if (delayed_.erase(item) == 0) {
            return;
        }
    }
    perform(*item);
}

void SerialQueue::State::add(const std::shared_ptr<ReadSource::State>& source) {
    const std::scoped_lock lock(mutex_);
    dispatch_group_enter(uncancelled_);
    sources_.emplace(source.get(), source);
}

void SerialQueue::State::remove(ReadSource::State& source) {
    {
        const std::scoped_lock lock(mutex_);
        sources_.erase(&source);
    }
    dispatch_group_leave(uncancelled_);
}

/// Destroys the delayed work after releasing the lock, because its destructors may call the queue.
void SerialQueue::State::drop() {
    std::unordered_set<std::shared_ptr<Work>> dropped;
    const std::scoped_lock lock(mutex_);
    dropped.swap(delayed_);
}

void SerialQueue::State::end() {
    std::vector<std::shared_ptr<ReadSource::State>> sources;
    {
        const std::scoped_lock lock(mutex_);
        for (const auto& [address, weakSource] : sources_) {
            if (auto source = weakSource.lock()) {
                sources.push_back(std::move(source));
            }
        }
    }
    const auto self = shared_from_this();
    dispatch_async(queue, ^{
        self->drop();
    });
    for (const auto& source : sources) {
        source->cancel();
    }
    if (!isCurrent()) {
        dispatch_sync(queue, ^{
                      });
        dispatch_group_wait(uncancelled_, DISPATCH_TIME_FOREVER);
    } else {
        // Keep the group alive until a leave has balanced each enter, as Dispatch requires.
        dispatch_group_notify(uncancelled_, queue, ^{
            (void)self;
        });
    }
}

SerialQueue::SerialQueue(std::string label)
    : state_(std::make_shared<State>(std::move(label))) {}

SerialQueue::~SerialQueue() { state_->end(); }
const std::string& SerialQueue::label() const { return state_->label; }
void SerialQueue::async(Work work) { state_->enqueue(std::move(work)); }

void SerialQueue::asyncAfter(std::chrono::milliseconds delay, Work work) {
    state_->enqueueAfter(delay, std::move(work));
}

void SerialQueue::sync(const Work& work) {
    if (isCurrent()) {
        fatalError("sync was called on its own queue, which would deadlock: " + label());
    }
    dispatch_sync(state_->queue, ^{
        work();
    });
}

bool SerialQueue::isCurrent() const { return state_->isCurrent(); }

} // namespace Platform
