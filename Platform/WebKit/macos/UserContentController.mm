#include "Platform/WebKit/UserContentController.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/Foundation/macos/Conversions.h"
#include "Platform/WebKit/macos/UserContentControllerNative.h"

#import <JavaScriptCore/JavaScriptCore.h>

/// WebKit retains its message handlers while a page exists. This proxy holds the actual handler weakly.
@interface KeyloftScriptMessageHandler : NSObject <WKScriptMessageHandler> {
@public
    std::weak_ptr<Platform::ScriptMessageHandler> handler;
}
@end

namespace Platform {

namespace {

std::string stringify(id value) {
    JSContext* const context = [[JSContext alloc] init];
    JSValue* const text = [[context evaluateScript:@"JSON.stringify"]
        callWithArguments:@[ value != nil ? value : NSNull.null ]];
    return text.isString ? fromNSString([text toString]) : "";
}

/// Calls the handler if it still exists. Must not throw, because the exception would propagate into WebKit.
void deliver(const std::weak_ptr<ScriptMessageHandler>& receiver, WKScriptMessage* message) noexcept {
    if (const auto handler = receiver.lock()) {
        handler->didReceiveScriptMessage(
            {.name = fromNSString(message.name), .body = ScriptMessage::bodyOf(stringify(message.body))});
    }
}

} // namespace

} // namespace Platform

@implementation KeyloftScriptMessageHandler
- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message {
    Platform::deliver(handler, message);
}
@end

namespace Platform {

UserContentController::UserContentController()
    : native_(std::make_unique<Native>()) {}

UserContentController::~UserContentController() { assertMainThread("UserContentController"); }

void UserContentController::addScriptMessageHandler(const std::weak_ptr<ScriptMessageHandler>& handler,
                                                    const std::string& name) {
    assertMainThread("UserContentController::addScriptMessageHandler");
    KeyloftScriptMessageHandler* const proxy = [[KeyloftScriptMessageHandler alloc] init];
    proxy->handler = handler;
    [native_->controller addScriptMessageHandler:proxy name:toNSString(name)];
}

void UserContentController::addUserScript(const UserScript& script) {
    assertMainThread("UserContentController::addUserScript");
    const auto injectionTime = script.injectionTime == UserScript::InjectionTime::atDocumentStart
                                   ? WKUserScriptInjectionTimeAtDocumentStart
                                   : WKUserScriptInjectionTimeAtDocumentEnd;
    [native_->controller addUserScript:[[WKUserScript alloc] initWithSource:toNSString(script.source)
                                                              injectionTime:injectionTime
                                                           forMainFrameOnly:script.forMainFrameOnly]];
}

} // namespace Platform
