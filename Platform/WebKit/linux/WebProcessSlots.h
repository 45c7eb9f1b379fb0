#pragma once

#include "Platform/Foundation/Timer.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace Platform {

class WebProcessSlot;

/// Limits the number of web processes, and how many of them start at the same time. Main thread only.
///
/// WebKitGTK blocks the main loop while it starts a process, and processes that start at the same time slow
/// each other down. A hidden view waits until no process is starting and the number of processes is below the
/// limit. A visible view may start its process while one other process is starting. If the limit is reached,
/// the process that has been hidden the longest is terminated first.
class WebProcessSlots : public std::enable_shared_from_this<WebProcessSlots> {
public:
    /// Other views wait at most `startTimeout` seconds for a starting process to respond.
    WebProcessSlots(std::size_t limit, Timer::Interval startTimeout)
        : limit_(limit)
        , startTimeout_(startTimeout) {}

    /// The application's instance. Its limit is below the X server's default limit of 256 clients, because
    /// WebKitGTK 2.50.6 terminates the application if the X server refuses a web process (not reported).
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
    /// All slots. A slot moves to the end when its view is shown or hidden.
    std::vector<WebProcessSlot*> slots_;
    bool isEvicting_ = false;
};

/// The slot of one view. A slot is empty, waits for a process, or holds a process. Main thread only.
class WebProcessSlot {
public:
    /// `isEvictable` is called for a hidden view and returns true if its process may be terminated. `evict`
    /// terminates it; every slot that holds the process must be released before `evict` returns.
    WebProcessSlot(std::shared_ptr<WebProcessSlots> slots, std::function<bool()> isEvictable,
                   std::function<void()> evict);
    WebProcessSlot(const WebProcessSlot&) = delete;
    WebProcessSlot& operator=(const WebProcessSlot&) = delete;
    ~WebProcessSlot();

    /// Calls `granted` when the view may use its process. The call is immediate if the slot already holds a
    /// process or is next in line and a process may start. Replaces any pending request.
    void request(std::function<void()> granted);
    bool isWaiting() const { return granted_ != nullptr; }
    void cancelRequest() { granted_ = nullptr; }
    /// Acquires a process if the limits permit it. Returns true if the slot holds a process.
    bool tryAcquire();
    /// Makes this slot share the process of `other`.
    void share(const WebProcessSlot& other) { process_ = other.process_; }
    void release();

    /// Called whenever the web process responds. Its first response lets the next waiting view proceed.
    void processStarted();
    /// Called after WebKitGTK has moved the page to a new process.
    void processReplaced();

    bool isVisible() const { return isVisible_; }
    void setVisible(bool visible);
    /// Returns true while a process is being terminated to make room for another.
    bool isEvicting() const { return slots_->isEvicting_; }

private:
    friend class WebProcessSlots;

    void start();
    void grant();

    std::shared_ptr<WebProcessSlots> slots_;
    std::function<bool()> isEvictable_;
    std::function<void()> evict_;
    std::function<void()> granted_;
    /// Represents the web process, which slots may share. The timer is valid while the process starts.
    std::shared_ptr<Timer> process_;
    bool isVisible_ = false;
};

} // namespace Platform
