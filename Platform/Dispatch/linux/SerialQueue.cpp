#include "Platform/Dispatch/SerialQueue.h"

#include "Platform/Dispatch/linux/QueueState.h"
#include "Platform/Foundation/FatalError.h"

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

thread_local const void* currentQueue = nullptr;

/// Uses the last component of a reverse-DNS label, because the kernel limits thread names to 15 bytes.
void nameThread(const std::string& label) {
    std::string name = label.substr(label.rfind('.') + 1);
    name.resize(std::min<std::size_t>(name.size(), 15));
    pthread_setname_np(pthread_self(), name.c_str());
}

/// Returns the signals to block on a queue's thread, so that the program's own threads handle them. Excludes
/// the signals of faults, which are sent to the thread that causes the fault.
sigset_t signalsForOthers() {
    sigset_t set;
    sigfillset(&set);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
        sigdelset(&set, fault);
    }
    return set;
}

} // namespace

SerialQueue::State::State(std::string name)
    : label(std::move(name))
    , wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd") {}

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
        // The write cannot fail, because the counter is read long before it overflows.
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

void SerialQueue::State::add(const Source& source) {
    const std::scoped_lock lock(mutex_);
    sources_.push_back(source);
}

void SerialQueue::State::sourceChanged() {
    const std::scoped_lock lock(mutex_);
    wakeIfAsleep();
}

void SerialQueue::State::end() {
    {
        const std::scoped_lock lock(mutex_);
        ended_ = true;
        for (const auto& source : sources_) {
            source->cancelled = true;
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
    takeTurn();
    while (prepareToWait()) {
        wait();
        takeTurn();
    }
}

/// Runs the work that is due, then the cancel handlers of sources that were cancelled before the call.
void SerialQueue::State::takeTurn() {
    std::vector<Work> running;
    std::vector<Source> retiring;
    {
        const std::scoped_lock lock(mutex_);
        const auto due = delayed_.upper_bound(Clock::now());
        std::for_each(delayed_.begin(), due,
                      [this](auto& delayed) { work_.push_back(std::move(delayed.second)); });
        delayed_.erase(delayed_.begin(), due);
        running.swap(work_);
        const auto cancelled =
            std::ranges::partition(sources_, [](const Source& source) { return !source->cancelled; });
        retiring.assign(std::move_iterator(cancelled.begin()), std::move_iterator(cancelled.end()));
        sources_.erase(cancelled.begin(), cancelled.end());
    }
    for (auto& item : running) {
        item();
        // Destroy the item now, because the next item may depend on its destruction.
        item = nullptr;
    }
    for (const auto& source : retiring) {
        if (source->cancelHandler) {
            source->cancelHandler();
        }
        source->eventHandler = nullptr;
        source->cancelHandler = nullptr;
    }
}

/// Prepares the arguments of poll(). Returns false if the queue has ended and no work or source remains.
bool SerialQueue::State::prepareToWait() {
    polled_.clear();
    waiting_.clear();
    const std::scoped_lock lock(mutex_);
    if (ended_ && work_.empty() && sources_.empty()) {
        return false;
    }
    timeout_ = waitMilliseconds();
    asleep_ = timeout_ != 0;
    for (const auto& source : sources_) {
        if (source->wanted) {
            polled_.push_back({.fd = source->descriptor, .events = POLLIN, .revents = 0});
            waiting_.push_back(source);
        }
    }
    polled_.push_back({.fd = wake_.get(), .events = POLLIN, .revents = 0});
    return true;
}

/// Returns the time in milliseconds until the next work item is due, or -1 if none is scheduled.
int SerialQueue::State::waitMilliseconds() const {
    const auto isCancelled = [](const Source& source) { return source->cancelled.load(); };
    if (!work_.empty() || std::ranges::any_of(sources_, isCancelled)) {
        return 0;
    }
    if (delayed_.empty()) {
        return -1;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(delayed_.begin()->first - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, std::numeric_limits<int>::max()));
}

void SerialQueue::State::wait() {
    const int count = poll(polled_.data(), polled_.size(), timeout_);
    if (count < 0 && errno != EINTR) {
        fatalError("poll failed: " + std::generic_category().message(errno));
    }
    asleep_ = false;
    if (count <= 0) {
        return;
    }
    if (polled_.back().revents != 0) {
        std::uint64_t wakes = 0;
        [[maybe_unused]] const auto taken = read(wake_.get(), &wakes, sizeof wakes);
    }
    for (std::size_t index = 0; index < waiting_.size(); ++index) {
        const auto& source = waiting_[index];
        if (polled_[index].revents == 0 || source->cancelled || !source->wanted) {
            continue;
        }
        if ((polled_[index].revents & POLLNVAL) != 0) {
            fatalError("a descriptor was closed before its read source was cancelled, on queue " + label);
        }
        if (source->eventHandler) {
            source->eventHandler();
        }
        // Run work that the handler submitted, such as a reply, before the next handler.
        takeTurn();
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
        fatalError("sync was called on its own queue, which would deadlock: " + label());
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
