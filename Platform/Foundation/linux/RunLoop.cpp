#include "Platform/Foundation/RunLoop.h"

#include <glib.h>

#include <deque>
#include <memory>
#include <mutex>
#include <utility>

namespace Platform {

namespace {

/// What `perform` was given. One idle source at a time works it off, so that the order of the calls is kept.
class PerformQueue {
public:
    static PerformQueue& shared() {
        static PerformQueue queue;
        return queue;
    }

    void push(std::function<void()> callback) {
        const std::scoped_lock lock(mutex_);
        callbacks_.push_back(std::move(callback));
        // One source for each callback: a callback that runs the loop itself does not hold up those behind
        // it.
        g_idle_add_full(G_PRIORITY_DEFAULT, &PerformQueue::performNext, nullptr, nullptr);
    }

private:
    static gboolean performNext(gpointer /*unused*/) noexcept {
        if (const auto callback = shared().pop()) {
            callback();
        }
        return G_SOURCE_REMOVE;
    }

    std::function<void()> pop() {
        const std::scoped_lock lock(mutex_);
        auto callback = std::move(callbacks_.front());
        callbacks_.pop_front();
        return callback;
    }

    std::mutex mutex_;
    std::deque<std::function<void()>> callbacks_;
};

GMainLoop* innermostLoop = nullptr;

} // namespace

RunLoop& RunLoop::main() {
    static RunLoop loop;
    return loop;
}

void RunLoop::run() {
    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(g_main_loop_new(nullptr, FALSE),
                                                                        &g_main_loop_unref);
    GMainLoop* const outer = std::exchange(innermostLoop, loop.get());
    g_main_loop_run(loop.get());
    innermostLoop = outer;
}

void RunLoop::stop() {
    if (innermostLoop != nullptr) {
        g_main_loop_quit(innermostLoop);
    }
}

void RunLoop::perform(std::function<void()> callback) { PerformQueue::shared().push(std::move(callback)); }

} // namespace Platform
