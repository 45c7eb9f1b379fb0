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
        SignalConnection received;
    };

    GObjectPtr<WebKitUserContentManager> manager;
    /// The engine's calls lead to them, so that they stay where they are.
    std::vector<std::unique_ptr<Registration>> registrations;
};

} // namespace Platform
