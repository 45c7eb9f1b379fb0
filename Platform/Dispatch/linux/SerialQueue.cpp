#include "Platform/Dispatch/SerialQueue.h"

#include "Platform/Dispatch/linux/QueueState.h"
#include "Platform/Foundation/FatalError.h"

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

/// How many sources poll() itself waits for.
constexpr std::size_t polledSourcesLimit = 16;

/// Where poll() finds the queue's own descriptors.
constexpr std::size_t wakeIndex = 0;
constexpr std::size_t overflowIndex = 1;
constexpr std::size_t firstSourceIndex = 2;

thread_local const void* currentQueue = nullptr;

int makeWakeDescriptor() {
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    return descriptor;
}

/// The kernel keeps 15 bytes of a thread's name; a reverse-DNS label tells most at its end.
void nameThread(const std::string& label) {
    std::string name = label.substr(label.rfind('.') + 1);
    name.resize(std::min<std::size_t>(name.size(), 15));
    pthread_setname_np(pthread_self(), name.c_str());
}

/// Signals sent to the process are for the program's own threads; faults must still be reported where they
/// happen.
sigset_t signalsForOthers() {
    sigset_t set;
    sigfillset(&set);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
        sigdelset(&set, fault);
    }
    return set;
}

[[noreturn]] void stopOnError(const char* call, int error) {
    fatalError(std::string(call) + ": " + std::generic_category().message(error));
}

} // namespace

void OwnedDescriptor::reset(int descriptor) {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
    descriptor_ = descriptor;
}

SerialQueue::State::State(std::string name)
    : label(std::move(name))
    , wake_(makeWakeDescriptor())
    , polled_{{.fd = wake_.get(), .events = POLLIN, .revents = 0}, {.fd = -1, .events = POLLIN, .revents = 0}}
    , polledSources_(firstSourceIndex) {}

bool SerialQueue::State::isCurrent() const { return currentQueue == this; }

void SerialQueue::State::start() {
    const sigset_t blocked = signalsForOthers();
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    try {
        thread_ = std::thread([self = shared_from_this()] { self->run(); });
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &previous, nullptr);
        throw;
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

void SerialQueue::State::wakeIfAsleep() {
    if (asleep_.exchange(false)) {
        const std::uint64_t one = 1;
        // It cannot fail: the counter is read before it could run full.
        [[maybe_unused]] const auto written = write(wake_.get(), &one, sizeof one);
    }
}

void SerialQueue::State::enqueue(Work item) {
    const std::scoped_lock lock(mutex_);
    work_.push_back(std::move(item));
    wakeIfAsleep();
}

void SerialQueue::State::enqueueAt(Clock::time_point due, Work item) {
    const std::scoped_lock lock(mutex_);
    delayed_.emplace(due, std::move(item));
    wakeIfAsleep();
}

void SerialQueue::State::add(const std::shared_ptr<SourceState>& source) {
    const std::scoped_lock lock(mutex_);
    source->index = sources_.size();
    sources_.push_back(source);
}

void SerialQueue::State::sourceChanged(const std::shared_ptr<SourceState>& source) {
    const std::scoped_lock lock(mutex_);
    changed_.push_back(source);
    wakeIfAsleep();
}

void SerialQueue::State::end() {
    {
        const std::scoped_lock lock(mutex_);
        ended_ = true;
        for (const auto& source : sources_) {
            if (!source->cancelled.exchange(true)) {
                changed_.push_back(source);
            }
        }
        wakeIfAsleep();
    }
    if (isCurrent()) {
        thread_.detach();
    } else {
        thread_.join();
    }
}

void SerialQueue::State::run() {
    currentQueue = this;
    nameThread(label);
    for (;;) {
        takeTurn();
        const int milliseconds = waitMilliseconds();
        if (milliseconds == std::numeric_limits<int>::min()) {
            return;
        }
        wait(milliseconds);
        for (const auto& source : ready_) {
            fire(source);
            // What the handler handed over (a reply, mostly) goes before the next handler.
            takeTurn();
        }
        ready_.clear();
    }
}

/// Runs what has been handed over by now, and then the cancel handlers of sources cancelled by now.
void SerialQueue::State::takeTurn() {
    takeOver();
    for (const auto& source : changing_) {
        if (source->wanted && !source->cancelled) {
            watch(source);
        } else {
            unwatch(source);
        }
    }
    changing_.clear();
    for (auto& item : running_) {
        item();
        // Released here and now, as the next item may count on it.
        item = nullptr;
    }
    running_.clear();
    for (const auto& source : retiring_) {
        retire(*source);
    }
    retiring_.clear();
}

/// The one look at what other threads see.
void SerialQueue::State::takeOver() {
    const std::scoped_lock lock(mutex_);
    if (!delayed_.empty()) {
        const auto now = Clock::now();
        while (!delayed_.empty() && delayed_.begin()->first <= now) {
            work_.push_back(std::move(delayed_.begin()->second));
            delayed_.erase(delayed_.begin());
        }
    }
    running_.swap(work_);
    changing_.swap(changed_);
    for (const auto& source : changing_) {
        if (source->cancelled && source->index != SourceState::notListed) {
            removeFromList(*source);
            retiring_.push_back(source);
        }
    }
}

void SerialQueue::State::removeFromList(SourceState& source) {
    const auto index = std::exchange(source.index, SourceState::notListed);
    if (index + 1 != sources_.size()) {
        sources_[index] = std::move(sources_.back());
        sources_[index]->index = index;
    }
    sources_.pop_back();
}

/// How long there is nothing to do: no limit (-1), some time, or for good (the least integer).
int SerialQueue::State::waitMilliseconds() {
    const std::scoped_lock lock(mutex_);
    if (!work_.empty() || !changed_.empty()) {
        return 0;
    }
    if (ended_ && sources_.empty()) {
        return std::numeric_limits<int>::min();
    }
    asleep_ = true;
    if (delayed_.empty()) {
        return -1;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(delayed_.begin()->first - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, std::numeric_limits<int>::max()));
}

void SerialQueue::State::retire(SourceState& source) {
    if (source.cancelHandler) {
        source.cancelHandler();
    }
    source.eventHandler = nullptr;
    source.cancelHandler = nullptr;
}

void SerialQueue::State::watch(const std::shared_ptr<SourceState>& source) {
    if (source->place != SourceState::Place::nowhere) {
        return;
    }
    if (polled_.size() >= firstSourceIndex + polledSourcesLimit) {
        makeRoom();
    }
    polled_.push_back({.fd = source->descriptor, .events = POLLIN, .revents = 0});
    polledSources_.push_back(source);
    source->place = SourceState::Place::polled;
    source->lastFired = turn_;
}

void SerialQueue::State::unwatch(const std::shared_ptr<SourceState>& source) {
    if (source->place == SourceState::Place::polled) {
        const auto found = std::find(polledSources_.begin() + firstSourceIndex, polledSources_.end(), source);
        const auto index = static_cast<std::size_t>(found - polledSources_.begin());
        polled_[index] = polled_.back();
        polled_.pop_back();
        polledSources_[index] = std::move(polledSources_.back());
        polledSources_.pop_back();
    } else if (source->place == SourceState::Place::overflow) {
        // On the queue its owner may have closed the descriptor already, which took it out of the set as
        // well.
        epoll_ctl(overflow_.get(), EPOLL_CTL_DEL, source->descriptor, nullptr);
        overflowSources_.erase(source.get());
    }
    source->place = SourceState::Place::nowhere;
}

/// Moves the source that has been quiet longest into the epoll set. Where the system refuses, poll() waits
/// for one more descriptor: slower, and nothing else.
void SerialQueue::State::makeRoom() {
    if (overflow_.get() < 0) {
        overflow_.reset(epoll_create1(EPOLL_CLOEXEC));
        polled_[overflowIndex].fd = overflow_.get();
    }
    const auto quietest = std::min_element(
        polledSources_.begin() + firstSourceIndex, polledSources_.end(),
        [](const auto& left, const auto& right) { return left->lastFired < right->lastFired; });
    auto source = *quietest; // a copy, as unwatching moves what the place holds
    epoll_event event = {};
    event.events = EPOLLIN;
    event.data.ptr = source.get();
    if (epoll_ctl(overflow_.get(), EPOLL_CTL_ADD, source->descriptor, &event) == 0) {
        unwatch(source);
        overflowSources_.emplace(source.get(), source);
        source->place = SourceState::Place::overflow;
    }
}

void SerialQueue::State::wait(int milliseconds) {
    const int count = poll(polled_.data(), polled_.size(), milliseconds);
    if (count < 0 && errno != EINTR) {
        stopOnError("poll", errno);
    }
    asleep_ = false;
    if (count <= 0) {
        return;
    }
    ++turn_;
    if (polled_[wakeIndex].revents != 0) {
        std::uint64_t wakes = 0;
        [[maybe_unused]] const auto taken = read(wake_.get(), &wakes, sizeof wakes);
    }
    for (std::size_t index = firstSourceIndex; index < polled_.size(); ++index) {
        if (polled_[index].revents != 0) {
            if ((polled_[index].revents & POLLNVAL) != 0 && !polledSources_[index]->cancelled) {
                fatalError("a descriptor was closed before its read source was cancelled, on queue " + label);
            }
            ready_.push_back(polledSources_[index]);
        }
    }
    if (polled_[overflowIndex].revents != 0) {
        collectOverflow();
    }
}

void SerialQueue::State::collectOverflow() {
    std::array<epoll_event, 64> events = {};
    const int count = epoll_wait(overflow_.get(), events.data(), static_cast<int>(events.size()), 0);
    for (int index = 0; index < count; ++index) {
        const auto* address = static_cast<SourceState*>(events.at(static_cast<std::size_t>(index)).data.ptr);
        if (const auto found = overflowSources_.find(address); found != overflowSources_.end()) {
            ready_.push_back(found->second);
        }
    }
}

void SerialQueue::State::fire(const std::shared_ptr<SourceState>& source) {
    if (source->cancelled || !source->wanted) {
        return;
    }
    source->lastFired = turn_;
    if (source->eventHandler) {
        source->eventHandler();
    }
}

SerialQueue::SerialQueue(std::string label)
    : state_(std::make_shared<State>(std::move(label))) {
    state_->start();
}

SerialQueue::~SerialQueue() { state_->end(); }

const std::string& SerialQueue::label() const { return state_->label; }

void SerialQueue::async(Work work) { state_->enqueue(std::move(work)); }

void SerialQueue::asyncAfter(std::chrono::milliseconds delay, Work work) {
    state_->enqueueAt(State::Clock::now() + delay, std::move(work));
}

void SerialQueue::sync(const Work& work) {
    if (isCurrent()) {
        fatalError("a synchronous call on the queue that it would wait for: " + label());
    }
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    state_->enqueue([&] {
        work();
        const std::scoped_lock lock(mutex);
        done = true;
        finished.notify_one();
    });
    std::unique_lock lock(mutex);
    finished.wait(lock, [&] { return done; });
}

bool SerialQueue::isCurrent() const { return state_->isCurrent(); }

} // namespace Platform
