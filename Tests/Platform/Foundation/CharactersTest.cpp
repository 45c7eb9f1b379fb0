#include "Platform/Foundation/Characters.h"

#include <gtest/gtest.h>

namespace {

using Platform::characterCount;
using Platform::characterPrefix;

TEST(Characters, clustersCountOnce) {
    EXPECT_EQ(characterCount("a\r\nb\n\r"), 5U);
    EXPECT_EQ(characterCount("e\u0301\u0308x"), 2U);
    EXPECT_EQ(characterCount("\u1100\u1161\u11A8\uAC01\u11A8\u1100"), 3U) << "Hangul syllables";
    EXPECT_EQ(characterCount("\U0001F469\u200D\U0001F467 \U0001F44D\U0001F3FD"), 3U)
        << "joined and modified pictographs";
    EXPECT_EQ(characterCount("a\u200Db"), 2U) << "a joiner joins pictographs only";
    EXPECT_EQ(characterCount("\U0001F469\u0301\u200D\U0001F467"), 1U);
    EXPECT_EQ(characterCount("\u0600a"), 1U) << "a prepended sign";
    EXPECT_EQ(characterCount("\u0301"), 1U) << "a mark without a base";
    EXPECT_EQ(characterCount("\n\u0301"), 2U) << "nothing joins a control";
    EXPECT_EQ(characterCount("\u0915\u094D\u0937\u093F"), 1U) << "consonants joined by a virama";
    EXPECT_EQ(characterCount("\u0915\u094D\u200C\u0937"), 2U) << "and kept apart";
}

TEST(Characters, flagsArePairs) {
    const std::string indicator = "\U0001F1E9";
    std::string text;
    for (std::size_t count = 1; count <= 6; ++count) {
        text += indicator;
        EXPECT_EQ(characterCount(text), (count + 1) / 2) << count;
    }
    EXPECT_EQ(characterCount(indicator + "\u200B" + indicator + indicator), 3U);
}

TEST(Characters, prefixNeverSplitsACluster) {
    const std::string text = "ab\r\ne\u0301\U0001F3F3\uFE0F\u200D\U0001F308z";
    EXPECT_EQ(characterPrefix(text, 0), "");
    EXPECT_EQ(characterPrefix(text, 2), "ab");
    EXPECT_EQ(characterPrefix(text, 3), "ab\r\n");
    EXPECT_EQ(characterPrefix(text, 4), "ab\r\ne\u0301");
    EXPECT_EQ(characterPrefix(text, 6), text);
    EXPECT_EQ(characterPrefix(text, 100), text);
    EXPECT_EQ(characterPrefix("a\xFFz", 2), "a\xFF") << "ill-formed bytes are kept";
}

TEST(Characters, prefixAndRestCountAsTheWhole) {
    const std::string text =
        "x\u0301\r\n\U0001F1E9\U0001F1EA\u0600\u0915\u094D\u0937 plain \U0001F468\u200D\U0001F469";
    const std::size_t count = characterCount(text);
    for (std::size_t length = 0; length <= count; ++length) {
        const std::string prefix = characterPrefix(text, length);
        EXPECT_EQ(characterCount(prefix), length);
        EXPECT_EQ(characterCount(std::string_view(text).substr(prefix.size())), count - length);
    }
}

TEST(Characters, illFormedBytesCountAndStayInside) {
    for (const std::string_view text :
         {"\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xED\xA0\x80", "\xC0\x80", "a\x80z"}) {
        EXPECT_FALSE(Platform::isValidUTF8(text));
        EXPECT_GE(characterCount(text), 1U);
        EXPECT_LE(characterCount(text), text.size());
        EXPECT_TRUE(Platform::isValidUTF8(Platform::repairingUTF8(text)));
        EXPECT_EQ(Platform::trimmingWhitespaceAndNewlines(text), text);
    }
    EXPECT_TRUE(Platform::isValidUTF8("\uFFFD\U0010FFFF"));
    EXPECT_EQ(Platform::repairingUTF8("a\xFF\uFFFDz"), "a\uFFFD\uFFFDz");
    EXPECT_EQ(Platform::repairingUTF8("\xF0\x9F\x98z\x80\x80"), "\uFFFDz\uFFFD\uFFFD")
        << "a truncated sequence is one, a stray byte is one each";
}

TEST(Characters, codePointsComeBack) {
    for (char32_t codePoint = 0; codePoint <= 0x10FFFF; codePoint += 7) {
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF) {
            continue;
        }
        std::string text;
        Platform::appendUTF8(text, codePoint);
        std::size_t offset = 0;
        ASSERT_EQ(Platform::nextCodePoint(text, offset), codePoint);
        ASSERT_EQ(offset, text.size());
    }
    std::string text;
    Platform::appendUTF8(text, 0xD800);
    Platform::appendUTF8(text, 0x110000);
    EXPECT_EQ(text, "\uFFFD\uFFFD");
}

TEST(Characters, trimmingLooksAtCodePointsOfBothEnds) {
    using Platform::trimmingWhitespaceAndNewlines;
    EXPECT_EQ(trimmingWhitespaceAndNewlines("\u3000\t\r\n a\u2028b \u0085\u200B"), "a\u2028b");
    EXPECT_EQ(trimmingWhitespaceAndNewlines(" \u2029\n"), "");
    EXPECT_EQ(trimmingWhitespaceAndNewlines(""), "");
    EXPECT_EQ(trimmingWhitespaceAndNewlines(" \u0301x"), "\u0301x") << "even if a combining mark follows";
    EXPECT_EQ(trimmingWhitespaceAndNewlines("\uFEFFx\uFEFF"), "\uFEFFx\uFEFF")
        << "a byte order mark is not whitespace";
}

TEST(Characters, lowercasesASCIIAlone) {
    EXPECT_EQ(Platform::asciiLowercased("@AZ[`az{\u00C9"), "@az[`az{\u00C9");
}

TEST(Characters, setsRefuseWhatIsNoCodePoint) {
    EXPECT_FALSE(Platform::isAlphanumeric(0x110000));
    EXPECT_FALSE(Platform::isAlphanumeric(0xFFFFFFFF));
    EXPECT_FALSE(Platform::isWhitespaceOrNewline(0xFFFFFFFF));
}

TEST(Characters, aMillionCharactersTakeLinearTime) {
    std::string text;
    for (int index = 0; index < 1'000'000; ++index) {
        text += index % 3 == 0 ? "\u0301" : "x";
    }
    EXPECT_EQ(characterCount(text), 666'667U);
    EXPECT_EQ(characterCount(std::string(1'000'000, '\r')), 1'000'000U);
}

} // namespace
