#include "Platform/AppKit/Application.h"

namespace Platform {

namespace {

bool isMade = false;

} // namespace

Application& Application::shared() {
    struct Made : Application {
        Made() { isMade = true; }
    };
    static Made application;
    return application;
}

bool Application::exists() { return isMade; }

bool sendAction(Action action, const std::shared_ptr<Responder>& target, const ActionSender& sender) {
    const auto receiver = target ? target : targetForAction(action);
    if (!receiver || !receiver->respondsTo(action)) {
        return false;
    }
    receiver->perform(action, sender);
    return true;
}

} // namespace Platform
