#pragma once

#include "Platform/Foundation/JSON.h"

#include <memory>
#include <string>

namespace Platform {

/// A script that the program adds to pages. A plain value.
struct UserScript {
    /// The moment at which a script runs.
    enum class InjectionTime {
        /// Before anything of the page runs.
        atDocumentStart,
        atDocumentEnd,
    };

    /// The JavaScript code.
    std::string source;
    InjectionTime injectionTime = InjectionTime::atDocumentEnd;
    /// If false, the script runs in every frame, regardless of its origin.
    bool forMainFrameOnly = true;
};

/// A value that a page's script posted to a handler.
struct ScriptMessage {
    /// The handler's name.
    std::string name;
    /// Null if `JSON.stringify` cannot convert the value, or `JSONValue::parse` refuses the result.
    JSONValue body;

    /// Returns the body for `json`, the result of `JSON.stringify` or an empty text if that failed.
    static JSONValue bodyOf(const std::string& json);
};

/// Receives messages that pages post. Main thread only.
class ScriptMessageHandler {
public:
    virtual ~ScriptMessageHandler() = default;

    /// Any frame of any page may have posted `message`, so validate its body.
    virtual void didReceiveScriptMessage(const ScriptMessage& message) = 0;
};

/// Scripts and message handlers for the pages of the web views that share the controller. Main thread only.
class UserContentController {
public:
    /// Creates a controller without scripts or handlers.
    static std::shared_ptr<UserContentController> create();

    UserContentController(const UserContentController&) = delete;
    UserContentController& operator=(const UserContentController&) = delete;
    ~UserContentController();

    /// Adds a handler that pages in any frame call as `window.webkit.messageHandlers.NAME.postMessage(…)`.
    /// The handler is held weakly; messages to a destroyed handler are dropped. Each name may be added only
    /// once.
    void addScriptMessageHandler(const std::weak_ptr<ScriptMessageHandler>& handler, const std::string& name);

    /// Adds a script that runs in the page's own script world, in every page that begins to load afterwards.
    void addUserScript(const UserScript& script);

    /// The native controller, for Platform's own sources.
    struct Native;
    Native& native() { return *native_; }

protected:
    UserContentController();

private:
    std::unique_ptr<Native> native_;
};

} // namespace Platform
