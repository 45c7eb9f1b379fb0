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

/// What a source and its queue share. Guarded by the mutex unless it says otherwise; Dispatch's own calls do
/// not wait and may be made with it held.
struct ReadSource::State : std::enable_shared_from_this<ReadSource::State> {
    /// Dispatch counts suspensions and starts a source but once; these are where ours stands.
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
    /// The queue's own once the source has started.
    Handler eventHandler;
    Handler cancelHandler;

private:
    void start();
    void fired() noexcept;
    void retire() noexcept;
};

/// A queue's inner life: Dispatch's queue and what ends with ours.
struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State> {
    explicit State(std::string label);

    bool isCurrent() const;
    void enqueue(Work item);
    void enqueueAfter(std::chrono::milliseconds delay, Work item);
    void add(const std::shared_ptr<ReadSource::State>& source);
    /// Called after the source's cancel handler.
    void remove(ReadSource::State& source);
    /// Drops what is not due, cancels the sources and, off the queue, waits until all is done.
    void end();

    const std::string label;
    const dispatch_queue_t queue;

private:
    void performDelayed(const std::shared_ptr<Work>& item);
    void drop();

    std::mutex mutex_;
    std::unordered_set<std::shared_ptr<Work>> delayed_;
    std::unordered_map<ReadSource::State*, std::weak_ptr<ReadSource::State>> sources_;
    /// Entered by every source until its cancel handler has run.
    const dispatch_group_t uncancelled_ = dispatch_group_create();
};

} // namespace Platform
