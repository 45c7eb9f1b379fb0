#include "Platform/WebKit/UserContentController.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/WebKit/linux/UserContentControllerNative.h"

#include <jsc/jsc.h>

#include <utility>

namespace Platform {

namespace {

std::string stringify(JSCValue* value) {
    const std::unique_ptr<char, decltype(&g_free)> text(jsc_value_to_json(value, 0), &g_free);
    return text ? text.get() : "";
}

} // namespace

void UserContentController::Native::Registration::received(WebKitUserContentManager* /*manager*/,
                                                           JSCValue* value) {
    if (const auto receiver = handler.lock()) {
        receiver->didReceiveScriptMessage({.name = name, .body = ScriptMessage::bodyOf(stringify(value))});
    }
}

UserContentController::UserContentController()
    : native_(std::make_unique<Native>()) {
    native_->manager = GObjectPtr<WebKitUserContentManager>::adopt(webkit_user_content_manager_new());
}

UserContentController::~UserContentController() { assertMainThread("UserContentController"); }

void UserContentController::addScriptMessageHandler(const std::weak_ptr<ScriptMessageHandler>& handler,
                                                    const std::string& name) {
    assertMainThread("UserContentController::addScriptMessageHandler");
    auto registration = std::make_unique<Native::Registration>();
    registration->name = name;
    registration->handler = handler;
    registration->connection = connectSignal<&Native::Registration::received>(
        native_->manager.get(), ("script-message-received::" + name).c_str(), *registration);
    native_->registrations.push_back(std::move(registration));
    webkit_user_content_manager_register_script_message_handler(native_->manager.get(), name.c_str(),
                                                                nullptr);
}

void UserContentController::addUserScript(const UserScript& script) {
    assertMainThread("UserContentController::addUserScript");
    const std::unique_ptr<WebKitUserScript, decltype(&webkit_user_script_unref)> made(
        webkit_user_script_new(script.source.c_str(),
                               script.forMainFrameOnly ? WEBKIT_USER_CONTENT_INJECT_TOP_FRAME
                                                       : WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
                               script.injectionTime == UserScript::InjectionTime::atDocumentStart
                                   ? WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START
                                   : WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_END,
                               nullptr, nullptr),
        &webkit_user_script_unref);
    webkit_user_content_manager_add_script(native_->manager.get(), made.get());
}

} // namespace Platform
