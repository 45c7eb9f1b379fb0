#include "KeyloftBrowserKit/AddressInput.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace {

using KeyloftBrowserKit::AddressInput;
using Platform::URL;

std::string textOf(const std::optional<URL>& url) { return url ? url->absoluteString() : "none"; }

std::string resolved(std::string_view text) { return textOf(AddressInput::resolve(text)); }
std::string searched(std::string_view text) { return textOf(AddressInput::search(text)); }

TEST(AddressInput, theSearchBaseIsTheEnginesRoot) {
    EXPECT_EQ(AddressInput::searchBase().absoluteString(), "https://duckduckgo.com/");
    EXPECT_EQ(&AddressInput::searchBase(), &AddressInput::searchBase());
}

TEST(AddressInput, blankTextResolvesToNone) {
    for (const std::string_view blank :
         {"", "   ", "\n\t", "\xc2\xa0\xe3\x80\x80\xe2\x80\xa8\xe2\x80\x8b\xc2\x85\r"}) {
        EXPECT_EQ(resolved(blank), "none");
        EXPECT_EQ(searched(blank), "none");
    }
}

TEST(AddressInput, aURLWithSchemeAndHostIsReturnedUnchanged) {
    for (const std::string_view text :
         {"https://example.test/x", "http://example.test", "ftp://x/y", "HTTPS://EXAMPLE.test:99999/?q#f",
          "keyloft://a", "https://u:p@example.test/", "http://[::1]/"}) {
        EXPECT_EQ(resolved(text), text);
    }
}

TEST(AddressInput, aURLIsTrimmedFirst) {
    EXPECT_EQ(resolved(" \thttps://example.test/x\n"), "https://example.test/x");
}

TEST(AddressInput, aSchemeWithoutHostIsSearchedFor) {
    EXPECT_EQ(resolved("about:blank"), "https://duckduckgo.com/?q=about:blank");
    EXPECT_EQ(resolved("mailto:x"), "https://duckduckgo.com/?q=mailto:x");
    EXPECT_EQ(resolved("javascript:alert(1)"), "https://duckduckgo.com/?q=javascript:alert(1)");
    EXPECT_EQ(resolved("file:///etc/passwd"), "https://duckduckgo.com/?q=file:///etc/passwd");
}

TEST(AddressInput, aHostNameGetsHTTPS) {
    EXPECT_EQ(resolved("example.test"), "https://example.test");
    EXPECT_EQ(resolved("example.test:8443/a"), "https://example.test:8443/a");
    EXPECT_EQ(resolved("a.b/c?d#e"), "https://a.b/c?d#e");
}

TEST(AddressInput, localhostGetsHTTP) {
    EXPECT_EQ(resolved("localhost"), "http://localhost");
    EXPECT_EQ(resolved("localhost:3000"), "http://localhost:3000");
    EXPECT_EQ(resolved("localhost:8080/app"), "http://localhost:8080/app");
}

TEST(AddressInput, localhostIsCaseSensitive) {
    EXPECT_EQ(resolved("LOCALHOST:3000"), "https://duckduckgo.com/?q=LOCALHOST:3000");
}

TEST(AddressInput, aPathWithoutPortMakesALocalAddressHTTPS) {
    EXPECT_EQ(resolved("localhost/app"), "https://localhost/app");
    EXPECT_EQ(resolved("192.168.1.10/admin"), "https://192.168.1.10/admin");
    EXPECT_EQ(resolved("192.168.1.10:80/x"), "http://192.168.1.10:80/x");
}

TEST(AddressInput, anIPv4AddressGetsHTTP) { EXPECT_EQ(resolved("10.0.0.1"), "http://10.0.0.1"); }

TEST(AddressInput, fourNumbersBeyondAByteAreAHostNameLikeAnyOther) {
    EXPECT_EQ(resolved("10.0.0.256"), "https://10.0.0.256");
    EXPECT_EQ(resolved("99999999999999999999.0.0.1"), "https://99999999999999999999.0.0.1");
}

TEST(AddressInput, emptyPiecesAreDroppedBeforeCounting) {
    EXPECT_EQ(resolved("1..2.3.4"), "http://1..2.3.4");
    EXPECT_EQ(resolved(".1.2.3.4"), "http://.1.2.3.4");
    EXPECT_EQ(resolved("1.2.3.4."), "http://1.2.3.4.");
}

TEST(AddressInput, threeOrFivePiecesAreNoIPv4Address) {
    EXPECT_EQ(resolved("1.2.3"), "https://1.2.3");
    EXPECT_EQ(resolved("1.2.3.4.5"), "https://1.2.3.4.5");
}

TEST(AddressInput, numbersMayHaveASignAndLeadingZeros) {
    EXPECT_EQ(resolved("01.002.0003.4"), "http://01.002.0003.4");
    EXPECT_EQ(resolved("+1.2.3.+4"), "http://+1.2.3.+4");
    EXPECT_EQ(resolved("-0.2.3.4"), "http://-0.2.3.4");
    EXPECT_EQ(resolved("-1.2.3.4"), "https://-1.2.3.4");
    EXPECT_EQ(resolved("1.2.3.+"), "https://duckduckgo.com/?q=1.2.3.%2B");
}

TEST(AddressInput, textWithASpaceIsSearchedFor) {
    EXPECT_EQ(resolved("hello world.test"), "https://duckduckgo.com/?q=hello%20world.test");
    EXPECT_EQ(resolved("example.test/a b"), "https://duckduckgo.com/?q=example.test/a%20b");
}

TEST(AddressInput, aTrailingDotIsSearchedFor) {
    EXPECT_EQ(resolved("example."), "https://duckduckgo.com/?q=example.");
}

TEST(AddressInput, aWordWithoutADotIsSearchedFor) {
    EXPECT_EQ(resolved("foo"), "https://duckduckgo.com/?q=foo");
}

TEST(AddressInput, anUnderscoreInTheHostIsSearchedFor) {
    EXPECT_EQ(resolved("foo_bar.test"), "https://duckduckgo.com/?q=foo_bar.test");
}

TEST(AddressInput, lettersOfAllScriptsMakeAHost) {
    EXPECT_EQ(resolved("münchen.example"), "https://xn--mnchen-3ya.example");
    EXPECT_EQ(resolved("日本.example/パス"), "https://xn--wgv71a.example/%E3%83%91%E3%82%B9");
    EXPECT_EQ(resolved("🦊.test"), "https://duckduckgo.com/?q=%F0%9F%A6%8A.test");
}

TEST(AddressInput, aHostThatCannotBeLoadedIsSearchedFor) {
    EXPECT_EQ(resolved("example.test:port"), "https://duckduckgo.com/?q=example.test:port");
    EXPECT_EQ(resolved("localhost:x"), "https://duckduckgo.com/?q=localhost:x");
}

TEST(AddressInput, searchEncodesPlusAndQuestionMark) {
    EXPECT_EQ(searched("a+b?c"), "https://duckduckgo.com/?q=a%2Bb%3Fc");
    EXPECT_EQ(searched("x++ tips"), "https://duckduckgo.com/?q=x%2B%2B%20tips");
}

TEST(AddressInput, searchTakesAddressesTooAndTrims) {
    EXPECT_EQ(searched("  https://example.test/  "), "https://duckduckgo.com/?q=https://example.test/");
    EXPECT_EQ(searched("a&b=c#d%"), "https://duckduckgo.com/?q=a%26b%3Dc%23d%25");
}

TEST(AddressInput, longTextIsNoBurden) {
    const std::string pluses(1'000'000, '+');
    EXPECT_EQ(searched(pluses).size(),
              std::string("https://duckduckgo.com/?q=").size() + (3 * pluses.size()));
    EXPECT_TRUE(AddressInput::resolve(std::string(1'000'000, '.')));
    EXPECT_TRUE(AddressInput::resolve("a." + std::string(1'000'000, 'a')));
}

TEST(AddressInput, illFormedTextIsSearchedFor) {
    EXPECT_TRUE(AddressInput::resolve("\xff\xfe"));
    EXPECT_TRUE(AddressInput::resolve("a\xc3.test"));
    EXPECT_TRUE(AddressInput::resolve(std::string_view("a\0b.test", 8)));
}

} // namespace
