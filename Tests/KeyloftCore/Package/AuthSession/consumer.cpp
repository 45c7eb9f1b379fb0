// A program built outside the project that can perform a sign-in. Without arguments, it only creates the
// session, which requires no display.

#include "KeyloftCore/AuthSession.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/AppKit/Application.h"
#include "Platform/Foundation/RunLoop.h"

#include <cstdio>

using namespace KeyloftCore;

int main(int argc, char** /*argv*/) {
    const auto url = Platform::URL::fromString(
        "https://appleid.apple.com/auth/authorize?redirect_uri=https://client.example/cb");
    const auto session =
        AuthSession::create({*url, RelayTarget::mintNonce()}, [](const AuthSession::Result& result) {
            std::puts(result ? "signed in" : result.error().message().c_str());
            Platform::RunLoop::main().stop();
        });
    session->initiatorOrigin = "https://client.example";
    if (argc > 1) {
        Platform::Application::shared().prepare();
        session->start();
        Platform::RunLoop::main().run();
    }
    std::puts("ready");
    return 0;
}
