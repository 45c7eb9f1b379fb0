#pragma once

#include "KeyloftCore/AuthResult.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "Platform/Foundation/JSON.h"

#include <exception>
#include <string_view>

namespace KeyloftCore {

/// Reading the result that a peer relays. Stateless; safe on any thread.
struct RelayResult {
    RelayResult() = delete;

    /// The first check that a message failed, in the order of the checks.
    class ParseError : public std::exception {
    public:
        /// In the order of the checks.
        enum class Case {
            notAResult,
            badParams,
            redirectMismatch,
            stateMismatch,
            nonceMismatch,
        };

        /// The error of a check.
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

    /// The result that the JSON `data` relays for `request`. Its mode and redirect URI are the request's; the
    /// message's URI may differ in query and fragment. An empty state counts as none, but not in the request.
    /// Throws ParseError.
    static AuthResult parse(std::string_view data, const AuthorizeRequest& request);

    /// The same for a message that has been read already.
    static AuthResult parseMessage(const Platform::JSONValue& message, const AuthorizeRequest& request);
};

} // namespace KeyloftCore

template <>
struct std::hash<KeyloftCore::RelayResult::ParseError> {
    std::size_t operator()(const KeyloftCore::RelayResult::ParseError& error) const noexcept {
        return std::hash<int>()(static_cast<int>(error.kind()));
    }
};
