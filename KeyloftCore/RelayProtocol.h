#pragma once

#include "KeyloftCore/AuthResult.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "Platform/Foundation/JSON.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace KeyloftCore {

/// The host's side of the relay's conversation: what it answers to a peer's message. Stateless; safe on any
/// thread.
struct RelayProtocol {
    RelayProtocol() = delete;

    /// A reply to one message: one of the three cases.
    class Reply {
    public:
        /// Whether the peer's target belongs to the request.
        struct Confirm {
            /// True if it does.
            bool ok = false;
            friend bool operator==(const Confirm&, const Confirm&) = default;
        };
        /// The result that the peer relayed, absent if it was refused.
        struct Ack {
            /// For the host only: the peer learns no more than that it was accepted.
            std::optional<AuthResult> result;
            friend bool operator==(const Ack&, const Ack&) = default;
        };
        /// The message was not understood.
        struct Error {
            /// The reason, in English.
            std::string message;
            friend bool operator==(const Error&, const Error&) = default;
        };

        /// A reply of the case.
        static Reply confirm(bool ok) { return Reply(Confirm{ok}); }
        static Reply ack(std::optional<AuthResult> result) { return Reply(Ack{std::move(result)}); }
        static Reply error(std::string message) { return Reply(Error{std::move(message)}); }

        /// The payload where the reply is of that case, else null.
        const Confirm* confirm() const { return std::get_if<Confirm>(&value_); }
        const Ack* ack() const { return std::get_if<Ack>(&value_); }
        const Error* error() const { return std::get_if<Error>(&value_); }

        /// What goes back to the peer, to be sent as one JSON text. Never holds the result itself.
        Platform::JSONValue::Object json() const;

        friend bool operator==(const Reply&, const Reply&) = default;

    private:
        explicit Reply(std::variant<Confirm, Ack, Error> value)
            : value_(std::move(value)) {}

        std::variant<Confirm, Ack, Error> value_;
    };

    /// Answers the message that `data` holds in JSON, whatever it is: never fails. Why a message was refused
    /// is kept from the peer.
    static Reply reply(std::string_view data, const AuthorizeRequest& request);
};

} // namespace KeyloftCore
