#include "Platform/Foundation/Base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Platform {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t notInAlphabet = 0xFF;

constexpr std::array<std::uint8_t, 256> valueTable() {
    std::array<std::uint8_t, 256> table{};
    table.fill(notInAlphabet);
    for (std::size_t value = 0; value < alphabet.size(); ++value) {
        table[static_cast<unsigned char>(alphabet[value])] = static_cast<std::uint8_t>(value);
    }
    return table;
}

constexpr std::array<std::uint8_t, 256> values = valueTable();

} // namespace

std::string base64Encoded(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t index = 0; index < bytes.size(); index += 3) {
        const std::string_view group = bytes.substr(index, 3);
        std::uint32_t bits = 0;
        for (std::size_t position = 0; position < 3; ++position) {
            const unsigned char byte =
                position < group.size() ? static_cast<unsigned char>(group[position]) : 0;
            bits = bits << 8U | byte;
        }
        for (std::size_t position = 0; position < 4; ++position) {
            const auto value = bits >> (18U - 6U * position) & 0x3FU;
            text += position <= group.size() ? alphabet[value] : '=';
        }
    }
    return text;
}

std::optional<std::string> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') {
        ++padding;
    }
    const std::string_view digits = text.substr(0, text.size() - padding);
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    unsigned int bitCount = 0;
    for (const char digit : digits) {
        const std::uint8_t value = values[static_cast<unsigned char>(digit)];
        if (value == notInAlphabet) {
            return std::nullopt;
        }
        bits = (bits << 6U | value) & 0xFFFFU;
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            bytes += static_cast<char>(bits >> bitCount & 0xFFU);
        }
    }
    return bytes;
}

} // namespace Platform
