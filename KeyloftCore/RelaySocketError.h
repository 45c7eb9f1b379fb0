#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The reason why the relay socket could not be created, connected or written to.
class RelaySocketError : public std::exception {
public:
    /// The kinds of failure.
    enum class Case {
        syscall,         ///< `call` failed with `code`
        pathTooLong,     ///< the path does not fit in a socket address
        pathContainsNUL, ///< the kernel would truncate the path at its NUL byte
    };

    /// `call` is the name of the system call, and `code` is its `errno`.
    static RelaySocketError syscall(std::string_view call, std::int32_t code);
    static RelaySocketError pathTooLong();
    static RelaySocketError pathContainsNUL();

    /// The kind of failure.
    Case kind() const noexcept { return kind_; }
    /// The name and the `errno` of the system call. Empty and 0 unless `kind` is `syscall`.
    const std::string& call() const noexcept { return call_; }
    std::int32_t code() const noexcept { return code_; }
    /// A string that describes the error, for example `syscall("connect", 2)`.
    const char* what() const noexcept override { return text_.c_str(); }

    /// Compares the kind, the call and the code.
    friend bool operator==(const RelaySocketError& left, const RelaySocketError& right) {
        return left.kind_ == right.kind_ && left.call_ == right.call_ && left.code_ == right.code_;
    }

private:
    RelaySocketError(Case kind, std::string_view call, std::int32_t code, std::string text);

    Case kind_;
    std::string call_;
    std::int32_t code_;
    std::string text_;
};

} // namespace KeyloftCore
