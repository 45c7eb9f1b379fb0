#pragma once

#include "KeyloftCore/AuthResult.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "Platform/Foundation/JSON.h"

#include <exception>
#include <string_view>

namespace KeyloftCore {

/// Parses the result that a peer relays. Stateless; safe on any thread.
struct RelayResult {
    RelayResult() = delete;

    /// The first check that a message failed, in the order of the checks.
    class ParseError : public std::exception {
    public:
        /// The checks, in order.
        enum class Case {
            notAResult,
            badParams,
            redirectMismatch,
            stateMismatch,
            nonceMismatch,
        };

        /// Creates the error of a failed check.
        explicit ParseError(Case kind)
            : kind_(kind) {}

        /// The check that failed.
        Case kind() const noexcept { return kind_; }
        /// The case's name.
        const char* what() const noexcept override;

        /// Errors are equal if their kinds are.
        friend bool operator==(const ParseError& left, const ParseError& right) {
            return left.kind_ == right.kind_;
        }

    private:
        Case kind_;
    };

    /// Returns the result that the JSON message in `data` relays for `request`, with the response mode and
    /// the redirect URI of the request. The message's URI may differ from it in query, fragment and
    /// credentials. An empty state in the message counts as absent, but an empty state in the request does
    /// not. Throws ParseError.
    static AuthResult parse(std::string_view data, const AuthorizeRequest& request);

    /// Like `parse`, for a message that is already parsed as JSON.
    static AuthResult parseMessage(const Platform::JSONValue& message, const AuthorizeRequest& request);
};

} // namespace KeyloftCore

template <>
struct std::hash<KeyloftCore::RelayResult::ParseError> {
    std::size_t operator()(const KeyloftCore::RelayResult::ParseError& error) const noexcept {
        return std::hash<int>()(static_cast<int>(error.kind()));
    }
};
