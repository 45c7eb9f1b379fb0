#include "Platform/Foundation/Characters.h"

#include "Platform/Foundation/FatalError.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>

namespace Platform {

namespace {

constexpr char32_t replacement = 0xFFFD;

/// The offset of the boundary after the first `limit` characters, and the number of characters before it.
struct Cut {
    std::size_t offset = 0;
    std::size_t count = 0;
};

Cut cutAt(std::string_view text, std::size_t limit) {
    // ICU uses 32-bit offsets. Ignore the rest of a longer string, which the program never displays.
    text = text.substr(0, std::numeric_limits<std::int32_t>::max());
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UText, decltype(&utext_close)> characters(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &error), &utext_close);
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    if (U_SUCCESS(error)) {
        iterator->setText(characters.get(), error);
    }
    if (U_FAILURE(error)) {
        fatalError(std::string("ICU cannot find character boundaries: ") + u_errorName(error));
    }
    Cut cut;
    while (cut.count < limit && iterator->next() != icu::BreakIterator::DONE) {
        ++cut.count;
        cut.offset = static_cast<std::size_t>(iterator->current());
    }
    return cut;
}

} // namespace

std::size_t characterCount(std::string_view text) { return cutAt(text, text.size()).count; }

std::string characterPrefix(std::string_view text, std::size_t count) {
    return std::string(text.substr(0, cutAt(text, count).offset));
}

bool isAlphanumeric(char32_t codePoint) {
    if (codePoint < 0x80) {
        return (codePoint >= U'0' && codePoint <= U'9') || (codePoint >= U'A' && codePoint <= U'Z') ||
               (codePoint >= U'a' && codePoint <= U'z');
    }
    return codePoint <= 0x10FFFF &&
           (U_GET_GC_MASK(static_cast<UChar32>(codePoint)) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

bool isWhitespaceOrNewline(char32_t codePoint) {
    switch (codePoint) {
    case 0x20:
    case 0x85:
    case 0xA0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return (codePoint >= 0x09 && codePoint <= 0x0D) || (codePoint >= 0x2000 && codePoint <= 0x200B);
    }
}

std::string_view trimmingWhitespaceAndNewlines(std::string_view text) {
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t next = begin;
        if (!isWhitespaceOrNewline(nextCodePoint(text, next))) {
            break;
        }
        begin = next;
    }
    std::size_t end = text.size();
    while (end > begin) {
        std::size_t start = end - 1;
        while (start > begin && end - start < 4 &&
               (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80U) {
            --start;
        }
        std::size_t next = start;
        if (!isWhitespaceOrNewline(nextCodePoint(text.substr(0, end), next)) || next != end) {
            break;
        }
        end = start;
    }
    return text.substr(begin, end - begin);
}

std::string asciiLowercased(std::string_view text) {
    std::string lowercased(text);
    std::ranges::transform(lowercased, lowercased.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return lowercased;
}

char32_t nextCodePoint(std::string_view text, std::size_t& offset) {
    UChar32 codePoint = 0;
    // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): ICU's macro
    U8_NEXT_OR_FFFD(text, offset, text.size(), codePoint);
    return static_cast<char32_t>(codePoint);
}

bool isValidUTF8(std::string_view bytes) {
    std::size_t offset = 0;
    while (offset < bytes.size()) {
        UChar32 codePoint = 0;
        // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): ICU's macro
        U8_NEXT(bytes, offset, bytes.size(), codePoint);
        if (codePoint < 0) {
            return false;
        }
    }
    return true;
}

std::string repairingUTF8(std::string_view bytes) {
    if (isValidUTF8(bytes)) {
        return std::string(bytes);
    }
    std::string text;
    text.reserve(bytes.size());
    std::size_t offset = 0;
    while (offset < bytes.size()) {
        appendUTF8(text, nextCodePoint(bytes, offset));
    }
    return text;
}

void appendUTF8(std::string& text, char32_t codePoint) {
    if (codePoint > 0x10FFFF || U_IS_SURROGATE(codePoint)) {
        codePoint = replacement;
    }
    std::array<char, U8_MAX_LENGTH> bytes = {};
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, codePoint);
    text.append(bytes.data(), length);
}

} // namespace Platform
