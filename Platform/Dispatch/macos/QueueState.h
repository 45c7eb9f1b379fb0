#pragma once

#include "Platform/Dispatch/ReadSource.h"
#include "Platform/Dispatch/SerialQueue.h"

#import <dispatch/dispatch.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace Platform {

/// The state that a source shares with its queue. Guarded by the mutex unless noted otherwise. Dispatch
/// functions do not block and may be called with the mutex held.
struct ReadSource::State : std::enable_shared_from_this<ReadSource::State> {
    /// The stage of the dispatch source. Dispatch counts suspensions and permits only one activation.
    enum class Stage {
        idle,
        running,
        suspended,
    };

    explicit State(const std::shared_ptr<SerialQueue::State>& queue, int descriptor);

    void resume();
    void suspend();
    void cancel();

    std::mutex mutex;
    Stage stage = Stage::idle;
    bool cancelled = false;
    dispatch_source_t source;
    std::weak_ptr<SerialQueue::State> queue;
    /// Used only on the queue once the source has been activated.
    Handler eventHandler;
    Handler cancelHandler;

private:
    void start();
    void fired() noexcept;
    void retire() noexcept;
};

/// A dispatch queue with its delayed work and its read sources.
struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State> {
    explicit State(std::string label);

    bool isCurrent() const;
    void enqueue(Work item);
    void enqueueAfter(std::chrono::milliseconds delay, Work item);
    void add(const std::shared_ptr<ReadSource::State>& source);
    /// Called after the source's cancel handler has run.
    void remove(ReadSource::State& source);
    /// Drops delayed work and cancels the sources. Waits until both are done, unless called on the queue.
    void end();

    const std::string label;
    const dispatch_queue_t queue;

private:
    void performDelayed(const std::shared_ptr<Work>& item);
    void drop();

    std::mutex mutex_;
    std::unordered_set<std::shared_ptr<Work>> delayed_;
    std::unordered_map<ReadSource::State*, std::weak_ptr<ReadSource::State>> sources_;
    /// Each source enters the group when it is added, and leaves it after its cancel handler has run.
    const dispatch_group_t uncancelled_ = dispatch_group_create();
};

} // namespace Platform
