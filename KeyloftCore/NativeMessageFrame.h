#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The framing of messages on the relay socket. A frame consists of the payload size in bytes, as an unsigned
/// 4-byte little-endian integer, followed by the payload, which may be empty. Frames follow each other
/// without separators.
struct NativeMessageFrame {
    NativeMessageFrame() = delete;

    /// The maximum payload size that a decoder accepts, in bytes (1 MiB). `encode` does not enforce this
    /// limit.
    static constexpr std::size_t maxLength = 1'048'576;

    /// Thrown by a decoder if a length prefix exceeds `maxLength`.
    class DecodeError : public std::exception {
    public:
        /// Creates the error for a length prefix with the value `length`, in bytes.
        static DecodeError frameTooLarge(std::int64_t length) { return DecodeError(length); }

        /// The value of the length prefix, in bytes.
        std::int64_t length() const noexcept { return length_; }
        const char* what() const noexcept override { return text_.c_str(); }

        /// Compares the lengths.
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

    /// Returns a frame that contains `payload`. Aborts if the payload size does not fit in 32 bits.
    static std::string encode(std::string_view payload);
};

} // namespace KeyloftCore
