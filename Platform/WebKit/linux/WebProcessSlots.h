#pragma once

#include "Platform/Foundation/Timer.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace Platform {

class WebProcessSlot;

/// Limits the number of web processes and the number of those that start at the same time. Main thread only.
///
/// WebKitGTK blocks the main loop while it starts a process, and processes that start together slow each
/// other down. A hidden view waits until no process is starting and the number of processes is below the
/// limit. A visible view may start its process while one other starts, and at the limit evicts the process
/// that has been hidden the longest.
class WebProcessSlots : public std::enable_shared_from_this<WebProcessSlots> {
public:
    /// A process that does not answer within `startTimeout` seconds no longer delays the others.
    WebProcessSlots(std::size_t limit, Timer::Interval startTimeout)
        : limit_(limit)
        , startTimeout_(startTimeout) {}

    /// The slots of this program. Each process is a client of the X server, which accepts 256 clients by
    /// default. If it refuses one, WebKitGTK 2.50.6 exits the program (not reported).
    static const std::shared_ptr<WebProcessSlots>& shared();

private:
    friend class WebProcessSlot;

    std::vector<const Timer*> processes() const;
    bool canStart(bool isVisible) const;
    WebProcessSlot* nextWaiting() const;
    void grantSoon();
    void makeRoom();

    std::size_t limit_;
    Timer::Interval startTimeout_;
    /// All slots, the most recently seen last.
    std::vector<WebProcessSlot*> slots_;
    bool isEvicting_ = false;
};

/// The slot of one view. It is empty, waits for a process, or holds one. Main thread only.
class WebProcessSlot {
public:
    /// `isEvictable` is called for hidden views. `evict` terminates the process; every slot that holds it
    /// must be released before `evict` returns.
    WebProcessSlot(std::shared_ptr<WebProcessSlots> slots, std::function<bool()> isEvictable,
                   std::function<void()> evict);
    WebProcessSlot(const WebProcessSlot&) = delete;
    WebProcessSlot& operator=(const WebProcessSlot&) = delete;
    ~WebProcessSlot();

    /// Calls `granted` when the view may use its process: at once if it has one or is next, otherwise later.
    /// Replaces the request that is waiting.
    void request(std::function<void()> granted);
    bool isWaiting() const { return granted_ != nullptr; }
    void cancelRequest() { granted_ = nullptr; }
    /// Returns true if the view may use its process now.
    bool tryAcquire();
    /// Shares the process of `other`.
    void share(const WebProcessSlot& other) { process_ = other.process_; }
    void release();

    /// The process has answered.
    void processStarted();
    /// WebKitGTK has moved the page to a new process.
    void processReplaced();

    bool isVisible() const { return isVisible_; }
    void setVisible(bool visible);
    /// Returns true while a process ends to make room for another.
    bool isEvicting() const { return slots_->isEvicting_; }

private:
    friend class WebProcessSlots;

    void start();
    void grant();

    std::shared_ptr<WebProcessSlots> slots_;
    std::function<bool()> isEvictable_;
    std::function<void()> evict_;
    std::function<void()> granted_;
    /// The timer of the process's start, valid until the process answers. Views of the same process share it.
    std::shared_ptr<Timer> process_;
    bool isVisible_ = false;
};

} // namespace Platform
