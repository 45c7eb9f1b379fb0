#pragma once

#include "Platform/Foundation/Error.h"
#include "Platform/Foundation/Timer.h"
#include "Platform/Foundation/URL.h"
#include "Platform/WebKit/LoadTimeout.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace Platform {

/// The phase of a view's navigation. WebKitGTK's events do not identify their navigation, and events of a
/// replaced navigation still arrive after the next one was requested.
class Navigation {
public:
    /// A navigation to a URL, requested by the program.
    struct Load {
        /// As WebKitGTK writes it. After a redirect, the new location.
        std::string uri;
        LoadTimeout timeout;
    };

    /// A failure that WebKitGTK is about to report as another error.
    struct ExpectedFailure {
        /// The location of a redirect that was refused for its port.
        std::optional<std::string> refusedRedirect;
        /// Runs while WebKitGTK cancels a load that timed out.
        std::shared_ptr<Timer> cancellation;
    };

    /// Returns true before the first navigation.
    bool isFresh() const { return std::holds_alternative<Fresh>(phase_); }
    /// Returns true for a view that a page opened, until the policy question about its first navigation.
    bool isNewWindow() const { return std::holds_alternative<NewWindow>(phase_); }
    /// Returns true from the program's request until the policy question about it.
    bool isRequested() const { return std::holds_alternative<Requested>(phase_); }
    bool hasStarted() const { return std::holds_alternative<Started>(phase_); }

    /// The program's load that is under way, or null.
    Load* load();
    /// The URL of the page that is shown, or nothing if it is unknown. `url` is the view's own, which may
    /// already be that of the next page.
    std::optional<URL> shownURL(const std::optional<URL>& url) const;

    /// Ends the state of a fresh view or a new window.
    void use() { phase_ = Idle{}; }
    /// A page has opened the view.
    void openWindow() { phase_ = NewWindow{}; }
    /// The program asks for a navigation, which replaces the one under way.
    void request(std::optional<Load> load, const std::optional<URL>& url);
    /// The program stops a requested navigation to `uri`.
    void stop(const std::string& uri);
    bool isStopped(const std::string& uri) const;

    /// WebKitGTK has asked about the requested navigation.
    void decide();
    /// WebKitGTK has begun a navigation. Returns false if it is an earlier one, which was replaced.
    bool start(const std::optional<URL>& url);
    void commit();
    /// The navigation is over. Its failure may still be reported.
    void end();
    /// The navigation is over, and no failure of it will be reported.
    void abandon();

    /// Null unless the navigation has started or is over.
    ExpectedFailure* expectedFailure();
    /// Returns the expected failure if `error` is how WebKitGTK reports it, else `error`.
    Error nameFailure(const Error& error);

private:
    struct UnderWay {
        std::optional<Load> load;
        std::optional<URL> shownURL;
    };

    struct Fresh {};
    struct NewWindow {};
    struct Idle {
        ExpectedFailure failure = {};
    };
    struct Requested : UnderWay {
        std::optional<std::string> stoppedURI = std::nullopt;
    };
    struct Decided : UnderWay {};
    /// The first phase of navigations that the page requests.
    struct Started : UnderWay {
        ExpectedFailure failure = {};
    };

    UnderWay* underWay();
    const UnderWay* underWay() const;
    std::optional<Load> takeLoad();
    ExpectedFailure takeFailure();

    std::variant<Fresh, NewWindow, Idle, Requested, Decided, Started> phase_;
};

} // namespace Platform
