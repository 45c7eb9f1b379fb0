#include "Platform/WebKit/linux/WebProcessPlace.h"

#include <glib.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace Platform {

/// One process, held by the places of all views that it serves.
struct WebProcessPlace::Process {
    explicit Process(std::function<void()> startLimitReached)
        : starting(Timer::scheduled(webProcessStartLimit, false, std::move(startLimitReached))) {
        ++count;
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() { --count; }

    bool isStarting() const { return starting && starting->isValid(); }

    std::shared_ptr<Timer> starting;

    static inline int count = 0;
};

class WebProcessPlace::List {
public:
    static List& shared() {
        static List list;
        return list;
    }

    void add(WebProcessPlace& place) { places_.push_back(&place); }
    void remove(WebProcessPlace& place) { std::erase(places_, &place); }

    std::uint64_t nextSighting() { return ++sightings_; }

    /// Whether a view that nobody need look at may start its process now.
    bool hasTurn(const WebProcessPlace& place) const {
        const auto* const next = nextWaiting();
        return (next == nullptr || next == &place) && Process::count < webProcessLimit &&
               startingCount() == 0;
    }

    bool mayStart(const WebProcessPlace& place) const {
        return hasTurn(place) || (place.user_.isVisible() && startingCount() < 2);
    }

    bool isMakingRoom() const { return isMakingRoom_; }

    void makeRoom() {
        if (Process::count < webProcessLimit) {
            return;
        }
        std::shared_ptr<Process> longestUnseen;
        for (const auto* place : places_) {
            const auto& process = place->process_;
            if (process && mayGiveWay(*process) &&
                (!longestUnseen || lastSeen(*process) < lastSeen(*longestUnseen))) {
                longestUnseen = process;
            }
        }
        if (!longestUnseen) {
            return;
        }
        isMakingRoom_ = true;
        // The end of one may be the end of another, or of its view.
        const auto present = places_;
        for (auto* place : present) {
            if (std::ranges::find(places_, place) != places_.end() && place->process_ == longestUnseen) {
                place->user_.giveWay();
            }
        }
        isMakingRoom_ = false;
    }

    void turnToNext() {
        const auto* const next = nextWaiting();
        if (source_ != 0) {
            g_source_remove(std::exchange(source_, 0));
        }
        if (next != nullptr) {
            source_ = g_idle_add_full(next->user_.isVisible() ? G_PRIORITY_DEFAULT : G_PRIORITY_LOW,
                                      &List::beginNext, this, nullptr);
        }
    }

private:
    std::ptrdiff_t startingCount() const {
        return std::ranges::count_if(
            places_, [](const auto* place) { return place->process_ && place->process_->isStarting(); });
    }

    bool mayGiveWay(const Process& process) const {
        return !process.isStarting() && std::ranges::all_of(places_, [&](const auto* place) {
            return place->process_.get() != &process || place->user_.mayGiveWay();
        });
    }

    std::uint64_t lastSeen(const Process& process) const {
        std::uint64_t last = 0;
        for (const auto* place : places_) {
            if (place->process_.get() == &process) {
                last = std::max(last, place->lastSeen_);
            }
        }
        return last;
    }

    /// One that is looked at, or else the oldest.
    WebProcessPlace* nextWaiting() const {
        WebProcessPlace* next = nullptr;
        for (auto* place : places_) {
            if (!place->isWaiting()) {
                continue;
            }
            if (place->user_.isVisible()) {
                return place;
            }
            if (next == nullptr) {
                next = place;
            }
        }
        return next;
    }

    static gboolean beginNext(gpointer data) {
        auto& list = *static_cast<List*>(data);
        list.source_ = 0;
        auto* const next = list.nextWaiting();
        if (next != nullptr && list.mayStart(*next)) {
            next->startAndUse();
        }
        return G_SOURCE_REMOVE;
    }

    /// In the order in which the views were made.
    std::vector<WebProcessPlace*> places_;
    std::uint64_t sightings_ = 0;
    bool isMakingRoom_ = false;
    guint source_ = 0;
};

WebProcessPlace::WebProcessPlace(WebProcessUser& user)
    : user_(user)
    , lastSeen_(List::shared().nextSighting()) {
    List::shared().add(*this);
}

WebProcessPlace::~WebProcessPlace() {
    List::shared().remove(*this);
    leave();
}

void WebProcessPlace::begin(std::function<void()> use) {
    use_ = std::move(use);
    if (process_ || List::shared().hasTurn(*this)) {
        startAndUse();
    }
}

void WebProcessPlace::cutIn() {
    if (isWaiting() && List::shared().mayStart(*this)) {
        startAndUse();
    }
}

void WebProcessPlace::stopWaiting() { use_ = {}; }

bool WebProcessPlace::takeNow() {
    if (!process_ && List::shared().mayStart(*this)) {
        start();
    }
    return process_ != nullptr;
}

bool WebProcessPlace::isMakingRoom() { return List::shared().isMakingRoom(); }

void WebProcessPlace::start() {
    if (process_) {
        return;
    }
    List::shared().makeRoom();
    process_ = std::make_shared<Process>([] { List::shared().turnToNext(); });
}

void WebProcessPlace::startAndUse() {
    const auto use = std::exchange(use_, {});
    start();
    use();
}

void WebProcessPlace::share(const WebProcessPlace& other) { process_ = other.process_; }

void WebProcessPlace::started() {
    if (process_ && std::exchange(process_->starting, nullptr)) {
        List::shared().turnToNext();
    }
}

void WebProcessPlace::moved() {
    // The one before goes on only where other views use it.
    if (process_.use_count() < 2) {
        return;
    }
    process_.reset();
    start();
    started();
}

void WebProcessPlace::leave() {
    if (std::exchange(process_, nullptr)) {
        List::shared().turnToNext();
    }
}

void WebProcessPlace::seen() { lastSeen_ = List::shared().nextSighting(); }

} // namespace Platform
