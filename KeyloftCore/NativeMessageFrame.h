#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// How messages travel over the relay socket: a 4-byte little-endian count of payload bytes, then the
/// payload. Frames follow each other directly; an empty payload is a frame too.
struct NativeMessageFrame {
    NativeMessageFrame() = delete;

    /// The longest payload that a decoder takes, in bytes (1 MiB). A sender is not held to it.
    static constexpr std::size_t maxLength = 1'048'576;

    /// What a decoder throws at a prefix beyond `maxLength`.
    class DecodeError : public std::exception {
    public:
        /// `length` is the prefix's value in bytes.
        static DecodeError frameTooLarge(std::int64_t length) { return DecodeError(length); }

        /// What the prefix said.
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

    /// The frame of `payload`. A payload whose count does not fit in 32 bits stops the process.
    static std::string encode(std::string_view payload);
};

} // namespace KeyloftCore
