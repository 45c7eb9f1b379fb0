// Relays the result of a sign-in to the program that is waiting for it.
//
//   relay-peer RELAY-URL [NAME=VALUE]...
//
// Reads the relay target from the fragment of the URL and asks the waiting host (see relay-host) to confirm
// it. If the host confirms it, relays the given parameters, or "code=example" by default. Adds the
// state of the target, unless a parameter sets the state.

#include "KeyloftCore/RelaySocketClient.h"
#include "KeyloftCore/RelaySocketError.h"
#include "KeyloftCore/RelaySocketPaths.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/URL.h"

#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace KeyloftCore;
using Platform::JSONValue;

constexpr double replyTimeout = 5;

std::optional<RelayTarget> targetOf(const std::string& text) {
    const auto url = Platform::URL::fromString(text);
    const auto fragment = url ? url->fragment() : std::nullopt;
    return fragment ? RelayTarget::fromFragment(*fragment) : std::nullopt;
}

/// Tries to connect to each candidate path, in order, until one accepts the connection. Prints an error for
/// each failure.
std::optional<RelaySocketClient> connectSomewhere() {
    for (const auto& path : RelaySocketPaths::candidates()) {
        try {
            return RelaySocketClient::connect(path);
        } catch (const RelaySocketError& error) {
            std::cerr << "relay-peer: " << path << ": " << error.what() << "\n";
        }
    }
    std::cerr << "relay-peer: no host accepts a connection; start the host first\n";
    return std::nullopt;
}

/// Sends one message on a new connection. Returns the reply, or nothing if no valid reply is received.
std::optional<JSONValue> exchange(const JSONValue& message) {
    const auto client = connectSomewhere();
    if (!client) {
        return std::nullopt;
    }
    std::optional<std::string> reply;
    try {
        client->writeFrame(Platform::compactJSON(message, Platform::JSONSlashes::plain));
        reply = client->readFrame(replyTimeout);
    } catch (const RelaySocketError& error) {
        std::cerr << "relay-peer: " << error.what() << "\n";
    }
    client->close();
    if (!reply) {
        std::cerr << "relay-peer: the host sent no reply\n";
        return std::nullopt;
    }
    std::cout << "the host answered " << *reply << "\n";
    return JSONValue::parse(*reply);
}

bool isTrue(const std::optional<JSONValue>& reply, std::string_view member) {
    const auto* value = reply ? reply->member(member) : nullptr;
    return value != nullptr && value->boolean() != nullptr && *value->boolean();
}

int usage() {
    std::cerr << "usage: relay-peer RELAY-URL [NAME=VALUE]...\n";
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        return usage();
    }
    const auto target = targetOf(argv[1]);
    JSONValue::Object params;
    for (int index = 2; index < argc; ++index) {
        const std::string_view argument = argv[index];
        const auto equals = argument.find('=');
        if (equals == std::string_view::npos) {
            return usage();
        }
        params.insert_or_assign(std::string(argument.substr(0, equals)), argument.substr(equals + 1));
    }
    if (!target) {
        std::cerr << "relay-peer: the URL contains no relay target\n";
        return 1;
    }
    std::cout << "target " << target->redirectURI.absoluteString() << "\n";
    if (params.empty()) {
        params.emplace("code", "example");
    }

    JSONValue::Object confirm{
        {"type", "confirm"}, {"redirectUri", target->redirectURI.absoluteString()}, {"nonce", target->nonce}};
    if (target->state) {
        confirm.emplace("state", *target->state);
        params.emplace("state", *target->state);
    }
    if (!isTrue(exchange(confirm), "ok")) {
        std::cerr << "relay-peer: the target was not confirmed\n";
        return 1;
    }
    const JSONValue::Object result{{"type", "result"},
                                   {"params", params},
                                   {"redirectUri", target->redirectURI.absoluteString()},
                                   {"nonce", target->nonce}};
    if (!isTrue(exchange(result), "relayed")) {
        std::cerr << "relay-peer: the result was refused\n";
        return 1;
    }
    std::cout << "relayed\n";
    return 0;
}
