#pragma once

#include "Platform/Foundation/JSON.h"

#include <memory>
#include <string>

namespace Platform {

/// A script that the program adds to pages. A value.
struct UserScript {
    /// The moment at which a script runs.
    enum class InjectionTime {
        /// Before anything of the page runs.
        atDocumentStart,
        atDocumentEnd,
    };

    /// JavaScript, and when it runs.
    std::string source;
    InjectionTime injectionTime = InjectionTime::atDocumentEnd;
    /// Otherwise it runs in every frame, of whatever origin.
    bool forMainFrameOnly = true;
};

/// A value that a page's script posted to a handler.
struct ScriptMessage {
    /// The handler's name.
    std::string name;
    /// Null if `JSON.stringify` cannot convert the value, or `JSONValue::parse` refuses the result.
    JSONValue body;

    /// The body for the result of `JSON.stringify`, or for an empty text if it failed.
    static JSONValue bodyOf(const std::string& json);
};

/// Receives what pages post. Main thread only.
class ScriptMessageHandler {
public:
    virtual ~ScriptMessageHandler() = default;

    /// Any page, and any frame of it, may have posted the message: check its body.
    virtual void didReceiveScriptMessage(const ScriptMessage& message) = 0;
};

/// What the program adds to the pages of the views that share it. Main thread only.
class UserContentController {
public:
    /// Creates a controller without scripts and handlers.
    static std::shared_ptr<UserContentController> create();

    UserContentController(const UserContentController&) = delete;
    UserContentController& operator=(const UserContentController&) = delete;
    ~UserContentController();

    /// Pages reach the handler as `window.webkit.messageHandlers.NAME.postMessage(…)`, from any frame. Held
    /// weakly: messages to a handler that is gone are dropped. A name is given once.
    void addScriptMessageHandler(const std::weak_ptr<ScriptMessageHandler>& handler, const std::string& name);

    /// Runs in the page's own world, in every page that begins to load from now on.
    void addUserScript(const UserScript& script);

    /// The system's side, for Platform's own sources.
    struct Native;
    Native& native() { return *native_; }

protected:
    UserContentController();

private:
    std::unique_ptr<Native> native_;
};

} // namespace Platform
