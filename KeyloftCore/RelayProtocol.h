#pragma once

#include "KeyloftCore/AuthResult.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "Platform/Foundation/JSON.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace KeyloftCore {

/// The host's side of the relay protocol, which computes the replies to the messages of a peer. Stateless and
/// thread-safe.
struct RelayProtocol {
    RelayProtocol() = delete;

    /// A reply to one message. Holds one of three alternatives.
    class Reply {
    public:
        /// Confirms or denies that the peer's relay target belongs to the request.
        struct Confirm {
            /// True if the target belongs to the request.
            bool ok = false;
            friend bool operator==(const Confirm&, const Confirm&) = default;
        };
        /// Acknowledges or refuses a result that the peer has relayed.
        struct Ack {
            /// The result, or nothing if it was refused. For the host only; the peer learns only whether the
            /// result was accepted.
            std::optional<AuthResult> result;
            friend bool operator==(const Ack&, const Ack&) = default;
        };
        /// Rejects a message that is malformed or has an unknown type.
        struct Error {
            /// The reason, in English.
            std::string message;
            friend bool operator==(const Error&, const Error&) = default;
        };

        /// Each function creates a reply that holds the alternative it is named after.
        static Reply confirm(bool ok) { return Reply(Confirm{ok}); }
        static Reply ack(std::optional<AuthResult> result) { return Reply(Ack{std::move(result)}); }
        static Reply error(std::string message) { return Reply(Error{std::move(message)}); }

        /// Each function returns the alternative it is named after, or null if the reply holds another one.
        const Confirm* confirm() const { return std::get_if<Confirm>(&value_); }
        const Ack* ack() const { return std::get_if<Ack>(&value_); }
        const Error* error() const { return std::get_if<Error>(&value_); }

        /// Returns the JSON object to send to the peer as one frame. It never contains the result itself.
        Platform::JSONValue::Object json() const;

        friend bool operator==(const Reply&, const Reply&) = default;

    private:
        explicit Reply(std::variant<Confirm, Ack, Error> value)
            : value_(std::move(value)) {}

        std::variant<Confirm, Ack, Error> value_;
    };

    /// Returns the reply to the JSON message in `data`. Never fails, regardless of the input. The reply does
    /// not reveal why a message was refused.
    static Reply reply(std::string_view data, const AuthorizeRequest& request);
};

} // namespace KeyloftCore
