#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// Why an authorization could not be begun or completed. `code` and `message` are what a host tells its
/// caller. A plain value.
///
/// AuthorizeRequest throws `badRequest`; an AuthSession ends with `internalError`, `cancelled` or `timeout`.
/// `noNativeSheet` is for hosts.
class HostError : public std::exception {
public:
    /// The kinds of failure. `code` is the text of each.
    enum class Case {
        badRequest,
        noNativeSheet,
        internalError,
        cancelled,
        timeout,
    };

    /// The last two have messages of their own.
    static HostError badRequest(std::string message) { return {Case::badRequest, std::move(message)}; }
    static HostError noNativeSheet(std::string message) { return {Case::noNativeSheet, std::move(message)}; }
    static HostError internalError(std::string message) { return {Case::internalError, std::move(message)}; }
    static HostError cancelled() { return {Case::cancelled, "user cancelled"}; }
    static HostError timeout() { return {Case::timeout, "timed out"}; }

    /// The case to branch on.
    Case kind() const noexcept { return kind_; }
    /// "bad_request", "no_native_sheet", "internal", "cancelled" or "timeout".
    std::string_view code() const noexcept;
    /// The reason, in English or in the web engine's words.
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
