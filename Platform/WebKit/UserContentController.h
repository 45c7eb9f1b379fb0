#pragma once

#include "Platform/Foundation/JSON.h"

#include <memory>
#include <string>

namespace Platform {

/// A script that the application injects into pages. A plain value type.
struct UserScript {
    /// The point during the load of a page at which a script runs.
    enum class InjectionTime {
        /// Before any content of the page is loaded.
        atDocumentStart,
        atDocumentEnd,
    };

    /// The source code of the script, in JavaScript.
    std::string source;
    /// The time at which the script runs.
    InjectionTime injectionTime = InjectionTime::atDocumentEnd;
    /// If false, the script runs in every frame, regardless of the frame's origin.
    bool forMainFrameOnly = true;
};

/// A message that a script in a page posted to a handler.
struct ScriptMessage {
    /// The handler's name.
    std::string name;
    /// The posted value. Null if `JSON.stringify` cannot convert it or `JSONValue::parse` rejects the result.
    JSONValue body;

    /// Parses the result of `JSON.stringify` as a message body. `json` is empty if the conversion failed.
    static JSONValue bodyOf(const std::string& json);
};

/// Receives messages that are posted by pages. Main thread only.
class ScriptMessageHandler {
public:
    virtual ~ScriptMessageHandler() = default;

    /// `message` may come from any frame of any page, so validate its body.
    virtual void didReceiveScriptMessage(const ScriptMessage& message) = 0;
};

/// The user scripts and message handlers of the web views that share this controller. Main thread only.
class UserContentController {
public:
    /// Creates a controller without scripts or handlers.
    static std::shared_ptr<UserContentController> create();

    UserContentController(const UserContentController&) = delete;
    UserContentController& operator=(const UserContentController&) = delete;
    ~UserContentController();

    /// Adds a message handler. Scripts in any frame can post messages to it with
    /// `window.webkit.messageHandlers.NAME.postMessage(…)`. The handler is held weakly; messages to a
    /// destroyed handler are dropped. Each name may be added only once.
    void addScriptMessageHandler(const std::weak_ptr<ScriptMessageHandler>& handler, const std::string& name);

    /// Adds a script to pages that load after this call. It runs in the same world as the pages' scripts.
    void addUserScript(const UserScript& script);

    /// The native controller. For internal use by Platform.
    struct Native;
    Native& native() { return *native_; }

protected:
    UserContentController();

private:
    std::unique_ptr<Native> native_;
};

} // namespace Platform
