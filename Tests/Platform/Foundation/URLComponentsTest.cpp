#include "Platform/Foundation/URLComponents.h"

#include "Tests/Support/Present.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Platform::URL;
using Platform::URLComponents;
using Platform::URLQueryItem;
using TestSupport::present;

URLComponents componentsOf(std::string_view text) { return URLComponents(present(URL::fromString(text))); }

URLQueryItem item(std::string name, std::optional<std::string> value = std::nullopt) {
    return {.name = std::move(name), .value = std::move(value)};
}

TEST(URLComponents, anEmptyTextHasComponents) {
    const URLComponents components = present(URLComponents::fromString(""));
    EXPECT_EQ(components.string(), "");
    EXPECT_EQ(components.url(), std::nullopt);
}

TEST(URLComponents, everyPartIsDecoded) {
    const URLComponents components = componentsOf("s://%41:%42@%43:8/%44?%45#%46");
    EXPECT_EQ(components.scheme(), "s");
    EXPECT_EQ(components.user(), "A");
    EXPECT_EQ(components.password(), "B");
    EXPECT_EQ(components.host(), "C");
    EXPECT_EQ(components.port(), 8);
    EXPECT_EQ(components.path(), "/D");
    EXPECT_EQ(components.query(), "E");
    EXPECT_EQ(components.fragment(), "F");
}

TEST(URLComponents, unchangedPartsKeepTheirText) {
    EXPECT_EQ(componentsOf("https://x.test:065/").string(), "https://x.test:065/");
    EXPECT_EQ(componentsOf("https://x.test:/").string(), "https://x.test:/");
    URLComponents components = componentsOf("https://x.test:065/");
    components.setFragment("f\u00E9");
    EXPECT_EQ(components.string(), "https://x.test:65/#f%C3%A9");
    components = componentsOf("https://u:@x.test:/p?q");
    components.setFragment("");
    EXPECT_EQ(components.string(), "https://u:@x.test/p?q#");
}

TEST(URLComponents, itemsKeepOrderAndTellEmptyFromAbsent) {
    const std::vector<URLQueryItem> items{item("a", "1"), item("b", ""), item("c"), item("a", "2=3"),
                                          item("")};
    EXPECT_EQ(componentsOf("?a=1&b=&c&a=2=3&").queryItems(), items);
    EXPECT_EQ(componentsOf("x").queryItems(), std::nullopt);
    EXPECT_EQ(componentsOf("x?").queryItems(), std::vector<URLQueryItem>());
}

TEST(URLComponents, itemsAreDecodedButForPlus) {
    const auto components = componentsOf("?a%26b=c%3Dd+e&%C3%A9");
    const std::vector<URLQueryItem> items{item("a&b", "c=d+e"), item("\u00E9")};
    EXPECT_EQ(components.queryItems(), items);
    EXPECT_EQ(present(components.percentEncodedQueryItems()).front().name, "a%26b");
}

TEST(URLComponents, anItemThatDoesNotDecodeLosesItsValueOrItsNamesText) {
    EXPECT_EQ(componentsOf("?x=%FF&%FF=y&%FF&%FF=%FF&z=").queryItems(),
              (std::vector<URLQueryItem>{item("x"), item("", "y"), item(""), item(""), item("z", "")}));
}

TEST(URLComponents, aPartThatDoesNotDecodeIsAbsent) {
    const URLComponents components = componentsOf("s://%FF:%FE@%FD/%FC?%FB#%FA");
    EXPECT_EQ(components.user(), std::nullopt);
    EXPECT_EQ(components.password(), std::nullopt);
    EXPECT_EQ(components.host(), std::nullopt);
    EXPECT_EQ(components.path(), "");
    EXPECT_EQ(components.query(), std::nullopt);
    EXPECT_EQ(components.fragment(), std::nullopt);
    EXPECT_EQ(components.percentEncodedHost(), "%FD");
    EXPECT_EQ(components.percentEncodedPath(), "/%FC");
    EXPECT_EQ(components.percentEncodedQuery(), "%FB");
    EXPECT_EQ(components.percentEncodedFragment(), "%FA");
}

TEST(URLComponents, aHostIsShownInUnicodeWhateverAResolverWouldSay) {
    struct Row {
        const char* error;
        std::string host;
        std::string shown;
    };
    for (const auto& [error, host, shown] : {
             Row{"none", "xn--bcher-kva.example", "b\u00FCcher.example"},
             Row{"none", "XN--BCHER-KVA.Example", "b\u00FCcher.example"},
             Row{"empty first label", ".xn--bcher-kva", ".b\u00FCcher"},
             Row{"empty middle label", "xn--bcher-kva..test", "b\u00FCcher..test"},
             Row{"label too long", std::string(64, 'a') + ".xn--bcher-kva",
                 std::string(64, 'a') + ".b\u00FCcher"},
             Row{"domain name too long", std::string(300, 'a') + ".xn--bcher-kva",
                 std::string(300, 'a') + ".b\u00FCcher"},
             Row{"leading hyphen", "-a.xn--bcher-kva", "-a.b\u00FCcher"},
             Row{"trailing hyphen", "a-.xn--bcher-kva", "a-.b\u00FCcher"},
             Row{"hyphens in the third and fourth place", "ab--c.xn--bcher-kva", "ab--c.b\u00FCcher"},
         }) {
        EXPECT_EQ(componentsOf("https://" + host + "/").host(), shown) << error;
    }
}

TEST(URLComponents, aHostThatIsNotValidPunycodeIsAbsent) {
    struct Row {
        const char* error;
        std::string host;
    };
    for (const auto& [error, host] : {
             Row{"leading combining mark", "xn--a-wbb.test"},
             Row{"disallowed character", "xn--x-din.test"},
             Row{"invalid Punycode", "xn--999999999.test"},
             Row{"invalid Punycode", "XN--999999999.test"},
             Row{"Punycode of a character that IDNA maps", "xn--bcher-2pa.test"},
             Row{"both directions in one label", "xn--a-zhc.test"},
             Row{"joiner out of context", "xn--ab-m1t.test"},
             Row{"too many bytes", std::string(2049, 'a')},
             Row{"too many bytes once converted", "xn--wgv" + std::string(682, 'a')},
         }) {
        const URLComponents components = componentsOf("https://" + host + "/");
        EXPECT_EQ(components.host(), std::nullopt) << error;
        EXPECT_EQ(components.percentEncodedHost(), host) << error;
    }
}

TEST(URLComponents, aHostIsShownUpToItsLimitInBytes) {
    std::string shown;
    for (int character = 0; character < 682; ++character) {
        shown += "\u65E5";
    }
    EXPECT_EQ(componentsOf("https://xn--wgv" + std::string(681, 'a') + "/").host(), shown);
}

TEST(URLComponents, aHostThatOnlyLosesItsCaseStaysAsWritten) {
    for (const std::string& host : {std::string(), std::string("LOCALHOST"), std::string("Example.TEST."),
                                    std::string("[2001:DB8::7]"), std::string(2048, 'A')}) {
        EXPECT_EQ(componentsOf("https://" + host + "/").host(), host);
    }
}

TEST(URLComponents, aByteOrderMarkIsPartOfAValue) {
    EXPECT_EQ(componentsOf("?\uFEFFa=\uFEFFb").queryItems(),
              (std::vector<URLQueryItem>{item("\uFEFFa", "\uFEFFb")}));
}

TEST(URLComponents, encodedItemsAreKeptAsTheyAre) {
    URLComponents components = componentsOf("https://x.test/?a=b=c&%C3%A9=%2F&d+e&f=?/;");
    const auto items = present(components.percentEncodedQueryItems());
    components.setPercentEncodedQueryItems(items);
    EXPECT_EQ(components.percentEncodedQuery(), "a=b=c&%C3%A9=%2F&d+e&f=?/;");
    components.setPercentEncodedQueryItems({item("a=b", "c&d"), item("%zz", "100%")});
    EXPECT_EQ(components.percentEncodedQuery(), "a%3Db=c%26d&%25zz=100%25")
        << "delimiters within names and values are encoded";
    EXPECT_EQ(components.string(), "https://x.test/?a%3Db=c%26d&%25zz=100%25");
}

TEST(URLComponents, anyItemsAreReadBack) {
    std::vector<URLQueryItem> items;
    for (int byte = 0; byte < 128; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        items.push_back(item(text + "\u65E5", text + text));
        items.push_back(item(text));
    }
    URLComponents components = componentsOf("https://x.test/#f");
    components.setQueryItems(items);
    EXPECT_EQ(components.queryItems(), items);
    const URL url = present(components.url());
    EXPECT_EQ(URLComponents(url).queryItems(), items);
    EXPECT_EQ(url.fragment(), "f");
}

TEST(URLComponents, noItemsGiveAnEmptyQuery) {
    URLComponents components = componentsOf("https://x.test/?a");
    components.setQueryItems({});
    EXPECT_EQ(components.string(), "https://x.test/?");
}

TEST(URLComponents, invalidEncodedTextIsEncodedRatherThanRefused) {
    URLComponents components = componentsOf("https://x.test/");
    components.setPercentEncodedQuery("a b%41");
    EXPECT_EQ(components.percentEncodedQuery(), "a%20b%2541");
    components.setPercentEncodedQuery("a%41");
    EXPECT_EQ(components.percentEncodedQuery(), "a%41");
    EXPECT_EQ(components.string(), "https://x.test/?a%41");
    components.setPercentEncodedQuery(std::string_view("%41").substr(0, 2));
    EXPECT_EQ(components.percentEncodedQuery(), "%254");
}

} // namespace
