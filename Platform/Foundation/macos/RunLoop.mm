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

/// What `perform` was given. A run loop's source works it off, one callback a turn and signalled again before
/// each, so that a callback which runs the loop itself does not hold up those behind it.
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

    /// Never destroyed. An application ends from inside its loop, with windows still waiting here to be let
    /// go; they would come back for more while this goes.
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

/// Whether the innermost `run` is to end; null outside of one.
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
    PerformQueue::shared(); // a loop without any source would return at once
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
