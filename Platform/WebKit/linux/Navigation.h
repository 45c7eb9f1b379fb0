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

/// How far a view's navigation has come. The engine does not say which navigation its events belong to, and
/// those of one that was replaced still arrive after the request for the next.
class Navigation {
public:
    /// What the program asked for by URL.
    struct Load {
        /// As the engine writes it. After a redirect, where that leads.
        std::string uri;
        LoadTimeout timeout;
    };

    /// A failure that the engine is about to tell under a name of its own.
    struct ExpectedFailure {
        /// Where a redirect led that was refused for its port.
        std::optional<std::string> refusedRedirect;
        /// Runs while the engine cancels a load whose time is up.
        std::shared_ptr<Timer> cancellation;
    };

    /// Whether nothing was ever asked for.
    bool isFresh() const { return std::holds_alternative<Fresh>(phase_); }
    /// Whether a page has opened the view, and the engine has not asked about its first navigation.
    bool isNewWindow() const { return std::holds_alternative<NewWindow>(phase_); }
    /// Whether the program has asked for a navigation that the engine has not asked about.
    bool isRequested() const { return std::holds_alternative<Requested>(phase_); }
    bool hasStarted() const { return std::holds_alternative<Started>(phase_); }

    /// What the program asked for, while it is under way.
    Load* load();
    /// The URL of the page that is shown, where the view's own is `url`, which may be that of a page on its
    /// way. Nothing if it is not known.
    std::optional<URL> shownURL(const std::optional<URL>& url) const;

    /// A fresh view is to be used.
    void use() { phase_ = Idle{}; }
    /// A page has opened the view.
    void openWindow() { phase_ = NewWindow{}; }
    /// The program asks for a navigation, which replaces the one under way.
    void request(std::optional<Load> load, const std::optional<URL>& url);
    /// The program stops a requested navigation to `uri`.
    void stop(const std::string& uri);
    bool isStopped(const std::string& uri) const;

    /// The engine has asked about the requested navigation.
    void decide();
    /// The engine has begun a navigation. Returns false if it is the one before the one under way.
    bool start(const std::optional<URL>& url);
    void commit();
    /// The navigation is over. Its failure may still be told.
    void end();
    /// Nothing will be told of it any more.
    void abandon();

    /// Of a navigation that has started or is over; otherwise none.
    ExpectedFailure* expectedFailure();
    /// `error`, or the failure that was expected in its place.
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
    /// A page's own navigation begins here.
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
