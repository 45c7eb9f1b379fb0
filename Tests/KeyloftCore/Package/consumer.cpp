// A program built outside the project that exchanges one message with itself over the relay.

#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelayProtocol.h"
#include "KeyloftCore/RelaySocketClient.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/URL.h"

#include <cstdio>
#include <string>

using namespace KeyloftCore;

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: consumer SOCKET\n");
        return 2;
    }
    const auto url = Platform::URL::fromString(
        "https://appleid.apple.com/auth/authorize?redirect_uri=https://b%C3%BCcher.example/cb&state=s");
    const AuthorizeRequest request(*url, RelayTarget::mintNonce());
    RelayListener listener;
    listener.listen(argv[1], [&](const std::string& message, const RelayListener::Reply& reply) {
        const auto json = RelayProtocol::reply(message, request).json();
        reply(Platform::compactJSON(json, Platform::JSONSlashes::plain));
    });

    const auto relayURL = request.safariRelayURL();
    const auto target = RelayTarget::fromFragment(*relayURL.fragment());
    const Platform::JSONValue::Object confirm{{"type", "confirm"},
                                              {"redirectUri", target->redirectURI.absoluteString()},
                                              {"state", *target->state},
                                              {"nonce", target->nonce}};
    const auto client = RelaySocketClient::connect(argv[1]);
    client.writeFrame(Platform::compactJSON(confirm, Platform::JSONSlashes::plain));
    const auto reply = client.readFrame(10);
    client.close();
    listener.close();
    std::puts(reply ? reply->c_str() : "no reply");
    return 0;
}
