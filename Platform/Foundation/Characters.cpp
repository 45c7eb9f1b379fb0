#include "Platform/Foundation/Characters.h"

#include <unicode/uchar.h>

namespace Platform {

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr char32_t zeroWidthNonJoiner = 0x200C;

bool isASCII(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// What the rules of UAX #29 need to know of the code points before a boundary.
///
/// The rules are walked here, over ICU's properties, rather than by ICU's break iterator: that one loads its
/// rules when it is made, which a short text does not repay, and they differ between its versions.
class ClusterRules {
public:
    /// Whether a new character begins with `codePoint`, given all those seen since the last beginning.
    bool beginsCharacter(char32_t codePoint) {
        const auto current = static_cast<UGraphemeClusterBreak>(
            u_getIntPropertyValue(static_cast<UChar32>(codePoint), UCHAR_GRAPHEME_CLUSTER_BREAK));
        const bool begins = first_ || boundaryBefore(current, codePoint);
        note(current, codePoint, begins);
        return begins;
    }

private:
    /// Scripts whose letters join over a virama.
    static bool joinsConsonants(char32_t codePoint) {
        return (codePoint >= 0x900 && codePoint <= 0x9FF) || (codePoint >= 0xA80 && codePoint <= 0xB7F) ||
               (codePoint >= 0xC00 && codePoint <= 0xC7F) || (codePoint >= 0xD00 && codePoint <= 0xD7F);
    }
    static int syllabicCategory(char32_t codePoint) {
        return u_getIntPropertyValue(static_cast<UChar32>(codePoint), UCHAR_INDIC_SYLLABIC_CATEGORY);
    }
    static bool isConsonant(char32_t codePoint) {
        return joinsConsonants(codePoint) && syllabicCategory(codePoint) == U_INSC_CONSONANT;
    }
    static bool isVirama(char32_t codePoint) {
        return joinsConsonants(codePoint) && syllabicCategory(codePoint) == U_INSC_VIRAMA;
    }

    bool boundaryBefore(UGraphemeClusterBreak current, char32_t codePoint) const {
        if (previous_ == U_GCB_CR && current == U_GCB_LF) {
            return false;
        }
        const auto isControl = [](UGraphemeClusterBreak value) {
            return value == U_GCB_CR || value == U_GCB_LF || value == U_GCB_CONTROL;
        };
        if (isControl(previous_) || isControl(current)) {
            return true;
        }
        switch (current) {
        case U_GCB_EXTEND:
        case U_GCB_ZWJ:
        case U_GCB_SPACING_MARK:
            return false;
        case U_GCB_L:
        case U_GCB_LV:
        case U_GCB_LVT:
            if (previous_ == U_GCB_L) {
                return false;
            }
            break;
        case U_GCB_V:
            if (previous_ == U_GCB_L || previous_ == U_GCB_LV || previous_ == U_GCB_V) {
                return false;
            }
            break;
        case U_GCB_T:
            if (previous_ == U_GCB_LV || previous_ == U_GCB_V || previous_ == U_GCB_LVT ||
                previous_ == U_GCB_T) {
                return false;
            }
            break;
        case U_GCB_REGIONAL_INDICATOR:
            if (previous_ == U_GCB_REGIONAL_INDICATOR && oddIndicators_) {
                return false;
            }
            break;
        default:
            break;
        }
        if (previous_ == U_GCB_PREPEND) {
            return false;
        }
        if (afterPictographJoiner_ &&
            u_hasBinaryProperty(static_cast<UChar32>(codePoint), UCHAR_EXTENDED_PICTOGRAPHIC)) {
            return false;
        }
        return !(afterConsonant_ && seenVirama_ && isConsonant(codePoint));
    }

    void note(UGraphemeClusterBreak current, char32_t codePoint, bool begins) {
        first_ = false;
        oddIndicators_ = current == U_GCB_REGIONAL_INDICATOR && (begins || !oddIndicators_);
        if (current == U_GCB_EXTEND || current == U_GCB_ZWJ) {
            afterPictographJoiner_ = afterPictograph_ && current == U_GCB_ZWJ;
            afterConsonant_ = afterConsonant_ && codePoint != zeroWidthNonJoiner;
            seenVirama_ = afterConsonant_ && (seenVirama_ || isVirama(codePoint));
            afterPictograph_ = afterPictograph_ && current == U_GCB_EXTEND;
        } else {
            afterPictographJoiner_ = false;
            afterPictograph_ =
                u_hasBinaryProperty(static_cast<UChar32>(codePoint), UCHAR_EXTENDED_PICTOGRAPHIC) != 0;
            afterConsonant_ = isConsonant(codePoint);
            seenVirama_ = false;
        }
        previous_ = current;
    }

    UGraphemeClusterBreak previous_ = U_GCB_OTHER;
    bool first_ = true;
    bool oddIndicators_ = false;
    bool afterPictograph_ = false;
    bool afterPictographJoiner_ = false;
    bool afterConsonant_ = false;
    bool seenVirama_ = false;
};

/// The offset behind the first `limit` characters, and how many there are up to there.
struct Cut {
    std::size_t offset = 0;
    std::size_t count = 0;
};

Cut cutAt(std::string_view text, std::size_t limit) {
    Cut cut;
    ClusterRules rules;
    std::size_t offset = 0;
    while (offset < text.size()) {
        // Between two ASCII bytes there is a boundary unless they are CR LF, whatever came before: no table
        // is needed.
        const bool plain = isASCII(text[offset]) &&
                           (offset + 1 == text.size() || isASCII(text[offset + 1])) && text[offset] != '\r' &&
                           text[offset] != '\n' && (offset == 0 || isASCII(text[offset - 1]));
        const std::size_t begin = offset;
        bool begins = true;
        if (plain) {
            ++offset;
            rules = ClusterRules();
        } else {
            begins = rules.beginsCharacter(nextCodePoint(text, offset));
        }
        if (begins) {
            if (cut.count == limit) {
                cut.offset = begin;
                return cut;
            }
            ++cut.count;
        }
    }
    cut.offset = text.size();
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

char32_t nextCodePoint(std::string_view text, std::size_t& offset) {
    const auto lead = static_cast<unsigned char>(text[offset]);
    if (lead < 0x80) {
        ++offset;
        return lead;
    }
    std::size_t length = 0;
    char32_t codePoint = 0;
    char32_t least = 0;
    if ((lead & 0xE0U) == 0xC0U) {
        length = 2;
        codePoint = lead & 0x1FU;
        least = 0x80;
    } else if ((lead & 0xF0U) == 0xE0U) {
        length = 3;
        codePoint = lead & 0x0FU;
        least = 0x800;
    } else if ((lead & 0xF8U) == 0xF0U) {
        length = 4;
        codePoint = lead & 0x07U;
        least = 0x10000;
    }
    if (length == 0 || text.size() - offset < length) {
        ++offset;
        return replacement;
    }
    for (std::size_t position = 1; position < length; ++position) {
        const auto trail = static_cast<unsigned char>(text[offset + position]);
        if ((trail & 0xC0U) != 0x80U) {
            ++offset;
            return replacement;
        }
        codePoint = codePoint << 6U | (trail & 0x3FU);
    }
    if (codePoint < least || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
        ++offset;
        return replacement;
    }
    offset += length;
    return codePoint;
}

bool isValidUTF8(std::string_view bytes) {
    std::size_t offset = 0;
    while (offset < bytes.size()) {
        // Most text is ASCII, which needs no decoding.
        if (static_cast<unsigned char>(bytes[offset]) < 0x80) {
            ++offset;
            continue;
        }
        const std::size_t before = offset;
        // A genuine U+FFFD takes three bytes, an ill-formed byte is passed over alone.
        if (nextCodePoint(bytes, offset) == replacement && offset - before == 1) {
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
    if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
        codePoint = replacement;
    }
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xC0U | codePoint >> 6U);
        append(0x80U | (codePoint & 0x3FU));
    } else if (codePoint < 0x10000) {
        append(0xE0U | codePoint >> 12U);
        append(0x80U | (codePoint >> 6U & 0x3FU));
        append(0x80U | (codePoint & 0x3FU));
    } else {
        append(0xF0U | codePoint >> 18U);
        append(0x80U | (codePoint >> 12U & 0x3FU));
        append(0x80U | (codePoint >> 6U & 0x3FU));
        append(0x80U | (codePoint & 0x3FU));
    }
}

} // namespace Platform
