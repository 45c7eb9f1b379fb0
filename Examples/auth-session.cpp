// Carries out one sign-in in a window of its own.
//
//   auth-session AUTHORIZE-URL [INITIATOR-ORIGIN]
//
// Prints the result as one line of JSON; or, on standard error, the error's code and message, and ends with
// status 1. What the session does on its way is told on standard error, too.

#include "KeyloftCore/AuthSession.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/HostError.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/AppKit/Application.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/URL.h"

#include <iostream>
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

AuthResult signIn(const AuthorizeRequest& request, const std::optional<std::string>& initiatorOrigin) {
    Platform::Application::shared().prepare();
    std::optional<AuthSession::Result> ending;
    const auto session = AuthSession::create(request, [&ending](const AuthSession::Result& result) {
        ending = result;
        Platform::RunLoop::main().stop();
    });
    session->initiatorOrigin = initiatorOrigin;
    session->start();
    if (!ending) {
        Platform::RunLoop::main().run();
    }
    if (!ending->has_value()) {
        throw ending->error();
    }
    return **ending;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: auth-session AUTHORIZE-URL [INITIATOR-ORIGIN]\n";
        return 2;
    }
    try {
        const auto result = signIn(requestFor(argv[1]), argc == 3 ? std::optional(argv[2]) : std::nullopt);
        std::cout << json(result) << '\n';
        return 0;
    } catch (const HostError& error) {
        std::cerr << "auth-session: " << error.code() << ": " << error.message() << '\n';
        return 1;
    }
}
