#pragma once

#include "KeyloftCore/AuthResult.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "Platform/Foundation/JSON.h"

#include <exception>
#include <string_view>

namespace KeyloftCore {

/// Parses the result that a peer relays. Stateless and thread-safe.
struct RelayResult {
    RelayResult() = delete;

    /// Reports the first check that a message failed.
    class ParseError : public std::exception {
    public:
        /// The checks, in the order in which they are made.
        enum class Case {
            notAResult,
            badParams,
            redirectMismatch,
            stateMismatch,
            nonceMismatch,
        };

        /// Creates an error for a failed check.
        explicit ParseError(Case kind)
            : kind_(kind) {}

        /// The check that failed.
        Case kind() const noexcept { return kind_; }
        /// The name of the enumerator.
        const char* what() const noexcept override;

        /// Compares the kinds.
        friend bool operator==(const ParseError& left, const ParseError& right) {
            return left.kind_ == right.kind_;
        }

    private:
        Case kind_;
    };

    /// Returns the result that the JSON message in `data` relays, with the response mode and the redirect URI
    /// of `request`. The redirect URI in the message may differ from that of the request in query, fragment
    /// and credentials. An empty state in the message counts as absent, but an empty state in the request
    /// does not. Throws ParseError.
    static AuthResult parse(std::string_view data, const AuthorizeRequest& request);

    /// Like `parse`, but takes a message that has already been parsed as JSON.
    static AuthResult parseMessage(const Platform::JSONValue& message, const AuthorizeRequest& request);
};

} // namespace KeyloftCore

template <>
struct std::hash<KeyloftCore::RelayResult::ParseError> {
    std::size_t operator()(const KeyloftCore::RelayResult::ParseError& error) const noexcept {
        return std::hash<int>()(static_cast<int>(error.kind()));
    }
};
