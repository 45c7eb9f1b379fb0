#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The reason why an authorization could not be started or completed. A host, the program that waits for the
/// sign-in, reports `code` and `message` to its own caller. A plain value type.
///
/// AuthorizeRequest throws `badRequest`. An AuthSession completes with `internalError`, `cancelled` or
/// `timeout`. `noNativeSheet` is used only by hosts.
class HostError : public std::exception {
public:
    /// The kinds of failure. `code` returns the string that identifies each kind.
    enum class Case {
        badRequest,
        noNativeSheet,
        internalError,
        cancelled,
        timeout,
    };

    /// Each function creates an error of the kind it is named after. `cancelled` and `timeout` have fixed
    /// messages.
    static HostError badRequest(std::string message) { return {Case::badRequest, std::move(message)}; }
    static HostError noNativeSheet(std::string message) { return {Case::noNativeSheet, std::move(message)}; }
    static HostError internalError(std::string message) { return {Case::internalError, std::move(message)}; }
    static HostError cancelled() { return {Case::cancelled, "user cancelled"}; }
    static HostError timeout() { return {Case::timeout, "timed out"}; }

    /// The kind of failure.
    Case kind() const noexcept { return kind_; }
    /// The string that identifies the kind of failure: "bad_request", "no_native_sheet", "internal",
    /// "cancelled" or "timeout".
    std::string_view code() const noexcept;
    /// The reason, in English or as reported by the web engine.
    const std::string& message() const noexcept { return message_; }
    const char* what() const noexcept override { return message_.c_str(); }

private:
    HostError(Case kind, std::string message)
        : kind_(kind)
        , message_(std::move(message)) {}

    Case kind_;
    std::string message_;
};

} // namespace KeyloftCore
