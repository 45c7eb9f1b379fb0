#include "Platform/Foundation/Base64.h"

#include <gtest/gtest.h>

namespace {

using Platform::base64Decoded;
using Platform::base64Encoded;

TEST(Base64, everyLengthAndByteComesBack) {
    std::string bytes;
    for (int length = 0; length <= 300; ++length) {
        EXPECT_EQ(base64Decoded(base64Encoded(bytes)), bytes) << length;
        bytes += static_cast<char>(length * 37);
    }
}

TEST(Base64, sixteenBytesGiveTwentyFourCharacters) {
    const std::string text = base64Encoded(std::string(16, '\xFF'));
    EXPECT_EQ(text, "/////////////////////w==");
}

TEST(Base64, paddingStandsAtTheEndOnly) {
    for (const auto* const text : {"=", "==", "===", "====", "A===", "=AAA", "AA=A", "AAAA=", "QQ==QQ=="}) {
        EXPECT_EQ(base64Decoded(text), std::nullopt) << text;
    }
}

TEST(Base64, otherBytesAreRefused) {
    EXPECT_EQ(base64Decoded(std::string_view("QU\0D", 4)), std::nullopt);
    EXPECT_EQ(base64Decoded("QUJ\xFF"), std::nullopt);
    EXPECT_EQ(base64Decoded("QUJ-"), std::nullopt);
}

} // namespace
