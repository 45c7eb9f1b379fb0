// Waits for the result of one sign-in that another program completes.
//
//   relay-host [AUTHORIZE-URL]
//
// Listens on the first relay path that works, prints the relay URL to open in a browser, and exits when a
// peer (see relay-peer) has relayed a result that belongs to the request.

#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/HostError.h"
#include "KeyloftCore/Log.h"
#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelayProtocol.h"
#include "KeyloftCore/RelaySocketError.h"
#include "KeyloftCore/RelaySocketPaths.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/URL.h"

#include <exception>
#include <future>
#include <iostream>
#include <optional>
#include <string>

namespace {

using namespace KeyloftCore;

constexpr auto exampleURL =
    "https://appleid.apple.com/auth/authorize?client_id=com.example.client"
    "&redirect_uri=https%3A%2F%2Fclient.example%2Fcallback&response_type=code&state=example";

std::optional<AuthorizeRequest> requestFor(const std::string& text) {
    const auto url = Platform::URL::fromString(text);
    if (!url) {
        std::cerr << "relay-host: not a URL: " << text << "\n";
        return std::nullopt;
    }
    try {
        return AuthorizeRequest(*url, RelayTarget::mintNonce());
    } catch (const HostError& error) {
        std::cerr << "relay-host: " << error.code() << ": " << error.message() << "\n";
        return std::nullopt;
    }
}

/// Tries to listen on each candidate path, in order, until one succeeds. Prints an error for each failure.
bool listenSomewhere(RelayListener& listener, const RelayListener::OnFrame& onFrame) {
    for (const auto& path : RelaySocketPaths::candidates()) {
        try {
            listener.listen(path, onFrame);
            std::cout << "listening on " << path << '\n' << std::flush;
            return true;
        } catch (const Platform::FileError& error) {
            std::cerr << "relay-host: " << error.localizedDescription() << "\n";
        } catch (const RelaySocketError& error) {
            std::cerr << "relay-host: " << path << ": " << error.what() << "\n";
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::cerr << "usage: relay-host [AUTHORIZE-URL]\n";
        return 2;
    }
    const auto request = requestFor(argc == 2 ? argv[1] : exampleURL);
    if (!request) {
        return 1;
    }

    std::promise<AuthResult> accepted;
    bool isAccepted = false; // accessed on the listener's queue only
    const auto onFrame = [&](const std::string& message, const RelayListener::Reply& sendReply) {
        // The request already has a result. Do not reply to later messages.
        if (isAccepted) {
            return;
        }
        const auto reply = RelayProtocol::reply(message, *request);
        const auto json = Platform::compactJSON(reply.json(), Platform::JSONSlashes::plain);
        std::cout << "a message of " << message.size() << " bytes, answered " << json << '\n' << std::flush;
        sendReply(json);
        if (const auto* ack = reply.ack(); ack != nullptr && ack->result) {
            isAccepted = true;
            accepted.set_value(*ack->result);
        }
    };

    RelayListener listener;
    if (!listenSomewhere(listener, onFrame)) {
        return 1;
    }
    std::cout << "relay URL: " << request->safariRelayURL().absoluteString() << '\n' << std::flush;

    const auto result = accepted.get_future().get();
    std::cout << "result for " << result.redirectURI.absoluteString() << ":\n";
    for (const auto& [name, value] : result.params) {
        std::cout << "  " << name << " = " << redact(value) << "\n";
    }
    return 0;
}
