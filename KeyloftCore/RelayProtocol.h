#pragma once

#include "KeyloftCore/AuthResult.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "Platform/Foundation/JSON.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace KeyloftCore {

/// The host's side of the relay protocol: computes the replies to a peer's messages. Stateless; safe on any
/// thread.
struct RelayProtocol {
    RelayProtocol() = delete;

    /// A reply to one message: one of three cases.
    class Reply {
    public:
        /// Confirms or denies that the peer's target belongs to the request.
        struct Confirm {
            /// True if the target belongs to the request.
            bool ok = false;
            friend bool operator==(const Confirm&, const Confirm&) = default;
        };
        /// Acknowledges or refuses a result that the peer has relayed.
        struct Ack {
            /// The result, absent if it was refused. For the host only; the peer learns only whether it was
            /// accepted or refused.
            std::optional<AuthResult> result;
            friend bool operator==(const Ack&, const Ack&) = default;
        };
        /// Rejects a message that was not understood.
        struct Error {
            /// The reason, in English.
            std::string message;
            friend bool operator==(const Error&, const Error&) = default;
        };

        /// Creates a reply of that case.
        static Reply confirm(bool ok) { return Reply(Confirm{ok}); }
        static Reply ack(std::optional<AuthResult> result) { return Reply(Ack{std::move(result)}); }
        static Reply error(std::string message) { return Reply(Error{std::move(message)}); }

        /// The payload if the reply is of that case, else null.
        const Confirm* confirm() const { return std::get_if<Confirm>(&value_); }
        const Ack* ack() const { return std::get_if<Ack>(&value_); }
        const Error* error() const { return std::get_if<Error>(&value_); }

        /// The JSON object for the peer, to be sent as one frame. Never contains the result itself.
        Platform::JSONValue::Object json() const;

        friend bool operator==(const Reply&, const Reply&) = default;

    private:
        explicit Reply(std::variant<Confirm, Ack, Error> value)
            : value_(std::move(value)) {}

        std::variant<Confirm, Ack, Error> value_;
    };

    /// Returns the reply to the JSON message in `data`. Never fails, for any data. The reply does not reveal
    /// why a message was refused.
    static Reply reply(std::string_view data, const AuthorizeRequest& request);
};

} // namespace KeyloftCore
