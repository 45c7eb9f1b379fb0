#include "Platform/WebKit/linux/Navigation.h"

#include "Platform/WebKit/linux/LoadError.h"

#include <type_traits>
#include <utility>

namespace Platform {

const Navigation::UnderWay* Navigation::underWay() const {
    return std::visit(
        [](const auto& phase) -> const UnderWay* {
            if constexpr (std::is_base_of_v<UnderWay, std::decay_t<decltype(phase)>>) {
                return &phase;
            } else {
                return nullptr;
            }
        },
        phase_);
}

Navigation::UnderWay* Navigation::underWay() {
    return const_cast<UnderWay*>(std::as_const(*this).underWay());
}

Navigation::Load* Navigation::load() {
    auto* navigation = underWay();
    return navigation && navigation->load ? &*navigation->load : nullptr;
}

std::optional<URL> Navigation::shownURL(const std::optional<URL>& url) const {
    const auto* navigation = underWay();
    return navigation ? navigation->shownURL : url;
}

std::optional<Navigation::Load> Navigation::takeLoad() {
    auto* navigation = underWay();
    return navigation ? std::exchange(navigation->load, std::nullopt) : std::nullopt;
}

Navigation::ExpectedFailure* Navigation::expectedFailure() {
    if (auto* started = std::get_if<Started>(&phase_)) {
        return &started->failure;
    }
    auto* idle = std::get_if<Idle>(&phase_);
    return idle ? &idle->failure : nullptr;
}

Navigation::ExpectedFailure Navigation::takeFailure() {
    auto* failure = expectedFailure();
    return failure ? std::exchange(*failure, {}) : ExpectedFailure{};
}

Error Navigation::nameFailure(const Error& error) {
    auto* expected = expectedFailure();
    if (!expected) {
        return error;
    }
    const bool isCancelled = error.domain == Error::urlDomain && error.code == Error::urlCancelled;
    if (isCancelled && std::exchange(expected->cancellation, nullptr)) {
        return timedOutError(error.failingURL);
    }
    const auto refused = std::exchange(expected->refusedRedirect, std::nullopt);
    if (refused && error.domain == Error::webKitDomain && error.failingURL == refused) {
        return restrictedPortError(refused);
    }
    return error;
}

void Navigation::request(std::optional<Load> load, const std::optional<URL>& url) {
    phase_ = Requested{{.load = std::move(load), .shownURL = shownURL(url)}};
}

void Navigation::stop(const std::string& uri) {
    if (auto* requested = std::get_if<Requested>(&phase_)) {
        requested->stoppedURI = uri;
    }
}

bool Navigation::isStopped(const std::string& uri) const {
    const auto* requested = std::get_if<Requested>(&phase_);
    return requested && requested->stoppedURI == uri;
}

void Navigation::decide() {
    if (auto* navigation = underWay()) {
        phase_ = Decided{std::move(*navigation)};
    }
}

bool Navigation::start(const std::optional<URL>& url) {
    // A load starts only after its policy decision, so this event belongs to an earlier navigation.
    if (isRequested() && load()) {
        return false;
    }
    // A second start means that the page requested a navigation before the application's load committed.
    auto load = hasStarted() ? std::nullopt : takeLoad();
    phase_ = Started{{.load = std::move(load), .shownURL = shownURL(url)}, takeFailure()};
    return true;
}

void Navigation::commit() {
    if (hasStarted()) {
        end();
    } else if (auto* navigation = underWay()) {
        // An earlier navigation has committed, so the URL of the shown page is unknown.
        navigation->shownURL.reset();
    }
}

void Navigation::end() {
    if (underWay()) {
        phase_ = Idle{takeFailure()};
    }
}

void Navigation::abandon() {
    if (!isFresh()) {
        phase_ = Idle{};
    }
}

} // namespace Platform
