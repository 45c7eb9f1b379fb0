#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The framing of messages on the relay socket: the size of the payload in bytes as an unsigned 4-byte
/// little-endian integer, then the payload. Frames follow each other directly. A payload may be empty.
struct NativeMessageFrame {
    NativeMessageFrame() = delete;

    /// The longest payload that a decoder accepts, in bytes (1 MiB). `encode` does not enforce it.
    static constexpr std::size_t maxLength = 1'048'576;

    /// Thrown by a decoder for a prefix beyond `maxLength`.
    class DecodeError : public std::exception {
    public:
        /// Creates the error for a prefix with the value `length`, in bytes.
        static DecodeError frameTooLarge(std::int64_t length) { return DecodeError(length); }

        /// The value of the prefix.
        std::int64_t length() const noexcept { return length_; }
        const char* what() const noexcept override { return text_.c_str(); }

        /// Errors are equal if their lengths are.
        friend bool operator==(const DecodeError& left, const DecodeError& right) {
            return left.length_ == right.length_;
        }

    private:
        explicit DecodeError(std::int64_t length)
            : length_(length)
            , text_("frameTooLarge(" + std::to_string(length) + ")") {}

        std::int64_t length_;
        std::string text_;
    };

    /// Returns the frame of `payload`. Aborts if the size of the payload does not fit in 32 bits.
    static std::string encode(std::string_view payload);
};

} // namespace KeyloftCore
