#pragma once

#include "Platform/Foundation/Timer.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace Platform {

/// How many web processes there may be before one gives way to the next. Each is a client of the X server,
/// which takes 256 in all unless told otherwise; where it refuses one, the engine ends the whole program.
inline int webProcessLimit = 150;

/// How long a process that does not answer holds up the next.
inline Timer::Interval webProcessStartLimit = 10;

/// A view that has a web process, or wants one.
class WebProcessUser {
public:
    WebProcessUser(const WebProcessUser&) = delete;
    WebProcessUser& operator=(const WebProcessUser&) = delete;
    virtual ~WebProcessUser() = default;

    virtual bool isVisible() const = 0;
    /// Whether nobody would notice at once.
    virtual bool mayGiveWay() const = 0;
    /// Ends the process, whereupon its places must be left.
    virtual void giveWay() = 0;

protected:
    WebProcessUser() = default;
};

/// The place of a view among all that have a web process or want one. Main thread only.
///
/// Starting a process stops the main loop, for the engine waits for its sandbox, and many that start together
/// keep one another from ever being done. So views that nobody looks at start theirs one at a time, when the
/// main loop has nothing better to do, and only below the limit. One that is looked at may start beside such
/// a one; at the limit, the process that was out of sight longest gives way to it.
class WebProcessPlace {
public:
    explicit WebProcessPlace(WebProcessUser& user);
    WebProcessPlace(const WebProcessPlace&) = delete;
    WebProcessPlace& operator=(const WebProcessPlace&) = delete;
    ~WebProcessPlace();

    /// Calls `use` as soon as the view may use its process: at once if it has one or it is its turn, in place
    /// of what waited before.
    void begin(std::function<void()> use);
    /// What waits is called now, if the view may start its process: mostly one that is looked at.
    void cutIn();
    bool isWaiting() const { return static_cast<bool>(use_); }
    void stopWaiting();

    /// Whether the view may use its process now; never waits.
    bool takeNow();
    /// The view uses the process of another.
    void share(const WebProcessPlace& other);

    /// Whether processes that end now do so because they give way.
    static bool isMakingRoom();

    /// The process has answered.
    void started();
    /// The engine has moved the view's page to another process.
    void moved();
    /// The process has ended, or is not the view's any more.
    void leave();
    /// The view comes into sight or goes out of it.
    void seen();

private:
    struct Process;
    class List;

    void start();
    void startAndUse();

    WebProcessUser& user_;
    std::shared_ptr<Process> process_;
    std::function<void()> use_;
    /// Greater than that of any view that was made or seen before.
    std::uint64_t lastSeen_ = 0;
};

} // namespace Platform
