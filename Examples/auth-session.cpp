// Completes one sign-in in its own window.
//
//   auth-session AUTHORIZE-URL [INITIATOR-ORIGIN]
//
// Prints the result as one line of JSON. If the sign-in fails, prints the error code and message to standard
// error and exits with status 1. The session also logs its steps to standard error.

#include "KeyloftCore/AuthSession.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/HostError.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/URL.h"

#include <expected>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

namespace {

using namespace KeyloftCore;

std::string json(const AuthResult& result) {
    const Platform::JSONValue::Object params(result.params.begin(), result.params.end());
    const Platform::JSONValue::Object object{{"responseMode", rawValue(result.responseMode)},
                                             {"redirectURI", result.redirectURI.absoluteString()},
                                             {"params", params}};
    return Platform::compactJSON(object, Platform::JSONSlashes::plain);
}

AuthorizeRequest requestFor(const std::string& text) {
    const auto url = Platform::URL::fromString(text);
    if (!url) {
        throw HostError::badRequest("not a URL");
    }
    return {*url, RelayTarget::mintNonce()};
}

/// Returns a main menu with a "Sign-In" menu and an Edit menu. On macOS, the first menu becomes the
/// application menu, and pasting a password with the keyboard requires an Edit menu.
std::shared_ptr<Platform::Menu> makeMainMenu() {
    using Platform::Menu;
    using Platform::MenuItem;
    const auto signIn = Menu::create("Sign-In");
    signIn->addItem(MenuItem::create("Close Window", Platform::StandardAction::performClose, "w"));
    auto mainMenu = Menu::create();
    for (const auto& menu : {signIn, Menu::createEditMenu()}) {
        const auto item = MenuItem::create(menu->title(), std::nullopt);
        item->setSubmenu(menu);
        mainMenu->addItem(item);
    }
    return mainMenu;
}

AuthSession::Result signIn(const AuthorizeRequest& request,
                           const std::optional<std::string>& initiatorOrigin) {
    Platform::setProgramInfo({.identifier = "velde.orvane.keyloft.auth-session",
                              .name = "Sign-in",
                              .version = {},
                              .description = {},
                              .copyright = {}});
    auto& application = Platform::Application::shared();
    application.setActivationPolicy(Platform::Application::ActivationPolicy::regular);
    application.prepare();
    application.setMainMenu(makeMainMenu());
    AuthSession::Result ending = std::unexpected(HostError::cancelled());
    bool hasEnded = false;
    const auto session = AuthSession::create(request, [&](const AuthSession::Result& result) {
        ending = result;
        hasEnded = true;
        Platform::RunLoop::main().stop();
    });
    session->initiatorOrigin = initiatorOrigin;
    session->start();
    if (!hasEnded) {
        Platform::RunLoop::main().run();
    }
    return ending;
}

int failed(const HostError& error) {
    std::cerr << "auth-session: " << error.code() << ": " << error.message() << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: auth-session AUTHORIZE-URL [INITIATOR-ORIGIN]\n";
        return 2;
    }
    try {
        const auto ending = signIn(requestFor(argv[1]), argc == 3 ? std::optional(argv[2]) : std::nullopt);
        if (!ending) {
            return failed(ending.error());
        }
        std::cout << json(*ending) << '\n';
        return 0;
    } catch (const HostError& error) {
        return failed(error);
    }
}
