#include "Platform/Foundation/DiagnosticLog.h"

#include <cstddef>

namespace Platform {

namespace {

void appendEscape(std::string& line, unsigned char byte) {
    static constexpr std::string_view digits = "0123456789abcdef";
    switch (byte) {
    case '\n':
        line += "\\n";
        return;
    case '\r':
        line += "\\r";
        return;
    default:
        line += "\\x";
        line += digits[byte >> 4U];
        line += digits[byte & 0xFU];
    }
}

} // namespace

std::string escapingControlCharacters(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        // U+0080 to U+009F are also control characters. Their UTF-8 encodings are C2 80 to C2 9F.
        const bool isHighControl = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        if ((byte < 0x20 && byte != '\t') || byte == 0x7F) {
            appendEscape(line, byte);
        } else if (isHighControl) {
            appendEscape(line, next);
            ++i;
        } else {
            line += text[i];
        }
    }
    return line;
}

} // namespace Platform
