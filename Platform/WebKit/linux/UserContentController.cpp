#include "Platform/WebKit/UserContentController.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/WebKit/linux/UserContentControllerNative.h"

#include <jsc/jsc.h>

#include <utility>

namespace Platform {

namespace {

JSONValue jsonValue(JSCValue* value) {
    const std::unique_ptr<char, decltype(&g_free)> text(jsc_value_to_json(value, 0), &g_free);
    if (!text) {
        return nullptr;
    }
    // What is neither array nor object is no JSON text on its own.
    const auto list = JSONValue::parse("[" + std::string(text.get()) + "]");
    return list && list->array() && list->array()->size() == 1 ? list->array()->front() : nullptr;
}

void messageReceived(WebKitUserContentManager* /*manager*/, JSCValue* value, gpointer data) {
    const auto& registration = *static_cast<UserContentController::Native::Registration*>(data);
    if (const auto handler = registration.handler.lock()) {
        handler->didReceiveScriptMessage({.name = registration.name, .body = jsonValue(value)});
    }
}

} // namespace

UserContentController::UserContentController()
    : native_(std::make_unique<Native>()) {
    native_->manager = GObjectPtr<WebKitUserContentManager>::adopt(webkit_user_content_manager_new());
}

UserContentController::~UserContentController() { assertMainThread("UserContentController"); }

std::shared_ptr<UserContentController> UserContentController::create() {
    assertMainThread("UserContentController::create");
    struct Made : UserContentController {};
    return std::make_shared<Made>();
}

void UserContentController::addScriptMessageHandler(const std::weak_ptr<ScriptMessageHandler>& handler,
                                                    const std::string& name) {
    assertMainThread("UserContentController::addScriptMessageHandler");
    auto registration = std::make_unique<Native::Registration>();
    registration->name = name;
    registration->handler = handler;
    registration->received =
        SignalConnection(native_->manager.get(), ("script-message-received::" + name).c_str(),
                         G_CALLBACK(messageReceived), registration.get());
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
