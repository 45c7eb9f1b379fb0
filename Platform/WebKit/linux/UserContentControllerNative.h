#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/UserContentController.h"

#include <webkit/webkit.h>

#include <memory>
#include <vector>

namespace Platform {

struct UserContentController::Native {
    struct Registration {
        std::string name;
        std::weak_ptr<ScriptMessageHandler> handler;
        SignalConnection connection;

        void received(WebKitUserContentManager* manager, JSCValue* value);
    };

    GObjectPtr<WebKitUserContentManager> manager;
    /// Registrations are allocated individually, because signal handlers hold pointers to them.
    std::vector<std::unique_ptr<Registration>> registrations;
};

} // namespace Platform
