#include "Platform/Foundation/RunLoop.h"

#include "Platform/Foundation/macos/RunLoopTurn.h"

#import <Foundation/Foundation.h>

#include <deque>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>

namespace Platform {

namespace {

/// The callbacks passed to `perform`. A run loop source calls one callback per iteration and is signalled
/// again before the call, so that a callback that runs the loop recursively does not delay the others.
class PerformQueue {
public:
    PerformQueue() {
        CFRunLoopSourceContext context = {};
        context.perform = [](void* /*unused*/) noexcept { shared().performNext(); };
        source_ = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
        CFRunLoopAddSource(CFRunLoopGetMain(), source_, kCFRunLoopCommonModes);
    }
    PerformQueue(const PerformQueue&) = delete;
    PerformQueue& operator=(const PerformQueue&) = delete;

    /// Never destroyed: an application exits inside its run loop, and destroying the remaining callbacks may
    /// release windows, which would call `perform` while the queue is being destroyed.
    static PerformQueue& shared() {
        static PerformQueue* const queue = std::make_unique<PerformQueue>().release();
        return *queue;
    }

    void push(std::function<void()> callback) {
        {
            const std::scoped_lock lock(mutex_);
            callbacks_.push_back(std::move(callback));
        }
        signal();
    }

private:
    void signal() {
        CFRunLoopSourceSignal(source_);
        CFRunLoopWakeUp(CFRunLoopGetMain());
    }

    void performNext() {
        std::function<void()> callback;
        {
            const std::scoped_lock lock(mutex_);
            if (callbacks_.empty()) {
                return;
            }
            callback = std::move(callbacks_.front());
            callbacks_.pop_front();
            if (!callbacks_.empty()) {
                signal();
            }
        }
        callback();
    }

    std::mutex mutex_;
    std::deque<std::function<void()>> callbacks_;
    CFRunLoopSourceRef source_ = nullptr;
};

/// The flag that stops the innermost `run`. Null if the loop is not running.
bool* innermostStopped = nullptr;

RunLoopTurn turn = {
    .wait =
        []() noexcept {
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, std::numeric_limits<double>::max(), true);
        },
    .wake = []() noexcept { CFRunLoopStop(CFRunLoopGetMain()); },
};

} // namespace

void setRunLoopTurn(RunLoopTurn replacement) { turn = replacement; }

RunLoop& RunLoop::main() {
    static RunLoop loop;
    return loop;
}

void RunLoop::run() {
    PerformQueue::shared(); // A run loop without sources would return immediately.
    bool stopped = false;
    bool* const outer = std::exchange(innermostStopped, &stopped);
    while (!stopped) {
        @autoreleasepool {
            turn.wait();
        }
    }
    innermostStopped = outer;
}

void RunLoop::stop() {
    if (innermostStopped != nullptr) {
        *innermostStopped = true;
        turn.wake();
    }
}

void RunLoop::perform(std::function<void()> callback) { PerformQueue::shared().push(std::move(callback)); }

} // namespace Platform
