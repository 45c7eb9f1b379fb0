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

/// Tracks the phase of a view's current navigation. WebKitGTK's events do not identify the navigation to
/// which they belong, and events of a replaced navigation may arrive after the next navigation is requested.
class Navigation {
public:
    /// A navigation to a URL, requested by the application.
    struct Load {
        /// The URI of the load, as serialized by WebKitGTK. After a redirect, the new location.
        std::string uri;
        LoadTimeout timeout;
    };

    /// The reason why the engine cancelled a load, if it did. WebKitGTK's error does not state the reason.
    struct ExpectedFailure {
        /// The location of a redirect that was refused because of its port.
        std::optional<std::string> refusedRedirect;
        /// Limits the wait for WebKitGTK to cancel a load that timed out. Null if no cancellation is pending.
        std::shared_ptr<Timer> cancellation;
    };

    /// Returns true before the first navigation.
    bool isFresh() const { return std::holds_alternative<Fresh>(phase_); }
    /// Returns true for a view opened by a page, until its first policy decision is requested.
    bool isNewWindow() const { return std::holds_alternative<NewWindow>(phase_); }
    /// Returns true after the application has requested a navigation, until its policy decision is requested.
    bool isRequested() const { return std::holds_alternative<Requested>(phase_); }
    bool hasStarted() const { return std::holds_alternative<Started>(phase_); }

    /// Returns the current load if the application requested it, otherwise null.
    Load* load();
    /// The URL of the page that is currently shown, or nothing if it is unknown. `url` is the URL that the
    /// view reports, which may already be the URL of the next page.
    std::optional<URL> shownURL(const std::optional<URL>& url) const;

    /// Records that the view has been used, so that it is no longer fresh or a new window.
    void use() { phase_ = Idle{}; }
    /// Records that a page has opened the view.
    void openWindow() { phase_ = NewWindow{}; }
    /// Records a navigation requested by the application, which replaces the current one.
    void request(std::optional<Load> load, const std::optional<URL>& url);
    /// Records that the application has stopped a requested navigation to `uri`.
    void stop(const std::string& uri);
    bool isStopped(const std::string& uri) const;

    /// Called when WebKitGTK requests a policy decision about the requested navigation.
    void decide();
    /// Called when a navigation has started. Returns false if a later navigation has already replaced it.
    bool start(const std::optional<URL>& url);
    void commit();
    /// Called when the navigation has ended. WebKitGTK may still report its failure.
    void end();
    /// Called when the navigation has ended and WebKitGTK will not report a failure for it.
    void abandon();

    /// The reason why the engine cancelled the navigation, if it did. Null before the navigation starts.
    ExpectedFailure* expectedFailure();
    /// Returns an error with the reason if the engine cancelled the navigation, otherwise `error` itself.
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
    /// A navigation requested by the page begins in this phase.
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
