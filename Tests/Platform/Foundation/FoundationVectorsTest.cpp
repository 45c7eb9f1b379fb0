#include "Platform/Foundation/Base64.h"
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/URL.h"
#include "Platform/Foundation/URLComponents.h"
#include "Tests/Support/Vectors.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using nlohmann::json;
using TestSupport::expectVectors;
using TestSupport::orNull;
using TestSupport::readVectors;

/// Returns true if a code point with this age was added after Unicode 15.0, the version with which the
/// vectors were recorded. A newer ICU may include such code points in a character set.
bool isNewerThanVectors(const UVersionInfo& age) {
    return std::pair(age[0], age[1]) > std::pair<std::uint8_t, std::uint8_t>(15, 0);
}

json itemsAsJSON(const std::optional<std::vector<Platform::URLQueryItem>>& items) {
    if (!items) {
        return nullptr;
    }
    json list = json::array();
    for (const Platform::URLQueryItem& item : *items) {
        list.push_back(json::array({item.name, orNull(item.value)}));
    }
    return list;
}

TEST(VectorRows, everyDifferingRowIsReported) {
    const std::size_t count = readVectors("base64").size();
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
        expectVectors("base64", [](const json& /*in*/) -> json { return "no text's base64"; });
    }
    EXPECT_EQ(failures.size(), static_cast<int>(count));
}

TEST(VectorRows, aMissingFileFails) {
    EXPECT_NONFATAL_FAILURE(expectVectors("missing", [](const json& in) { return in; }), "has no rows");
}

TEST(URLVectors, fromStringAnswersAsFoundation) {
    expectVectors("url", [](const json& in) -> json {
        const auto url = Platform::URL::fromString(in.get<std::string>());
        if (!url) {
            return nullptr;
        }
        return {{"absoluteString", url->absoluteString()},
                {"scheme", orNull(url->scheme())},
                {"host", orNull(url->host())},
                {"port", orNull(url->port())},
                {"path", url->path()},
                {"query", orNull(url->query())},
                {"fragment", orNull(url->fragment())},
                {"user", orNull(url->user())},
                {"password", orNull(url->password())}};
    });
}

TEST(URLComponentsVectors, partsOfAURLAreFoundations) {
    expectVectors("components", [](const json& in) -> json {
        const auto url = Platform::URL::fromString(in.get<std::string>());
        if (!url) {
            return nullptr;
        }
        const Platform::URLComponents components(*url);
        return {{"string", components.string()},
                {"scheme", orNull(components.scheme())},
                {"host", orNull(components.host())},
                {"port", orNull(components.port())},
                {"path", components.path()},
                {"query", orNull(components.percentEncodedQuery())},
                {"fragment", orNull(components.fragment())},
                {"fragmentEncoded", orNull(components.percentEncodedFragment())},
                {"items", itemsAsJSON(components.queryItems())},
                {"itemsEncoded", itemsAsJSON(components.percentEncodedQueryItems())}};
    });
}

TEST(URLComponentsVectors, queryTextIsSplitAsFoundationDoes) {
    expectVectors("query-text", [](const json& in) -> json {
        const auto components = Platform::URLComponents::fromString("?" + in.get<std::string>());
        return components ? itemsAsJSON(components->queryItems()) : json();
    });
}

TEST(CharactersVectors, countIsOfPerceivedCharacters) {
    expectVectors("count",
                  [](const json& in) -> json { return Platform::characterCount(in.get<std::string>()); });
}

TEST(CharactersVectors, prefixEndsBetweenCharacters) {
    expectVectors("prefix", [](const json& in) -> json {
        return Platform::characterPrefix(in.get<std::string>(), 10);
    });
}

TEST(CharactersVectors, newerThanTheVectorsIsAllAfterUnicode15Point0) {
    EXPECT_FALSE(isNewerThanVectors({0, 0}));
    EXPECT_FALSE(isNewerThanVectors({14, 9}));
    EXPECT_FALSE(isNewerThanVectors({15, 0}));
    EXPECT_TRUE(isNewerThanVectors({15, 1}));
    EXPECT_TRUE(isNewerThanVectors({16, 0}));
}

TEST(CharactersVectors, setsHoldTheRangesOfUnicode) {
    for (const auto& row : readVectors("character-ranges")) {
        const bool alphanumerics = row.in == "alphanumerics";
        if (!alphanumerics && row.in != "whitespaceAndNewline") {
            ADD_FAILURE() << "unknown set " << row.in;
            continue;
        }
        std::vector<bool> members(0x110000, false);
        for (const json& range : row.out) {
            for (auto codePoint = range.at(0).get<std::size_t>(); codePoint <= range.at(1).get<std::size_t>();
                 ++codePoint) {
                members.at(codePoint) = true;
            }
        }
        for (char32_t codePoint = 0; codePoint < members.size(); ++codePoint) {
            const bool got = alphanumerics ? Platform::isAlphanumeric(codePoint)
                                           : Platform::isWhitespaceOrNewline(codePoint);
            if (got == members[codePoint]) {
                continue;
            }
            UVersionInfo age{};
            u_charAge(static_cast<UChar32>(codePoint), age);
            EXPECT_TRUE(got && isNewerThanVectors(age))
                << row.in << " U+" << std::hex << static_cast<std::uint32_t>(codePoint);
        }
    }
}

TEST(Base64Vectors, decodedAndWrittenAgain) {
    expectVectors("base64", [](const json& in) -> json {
        const auto bytes = Platform::base64Decoded(in.get<std::string>());
        return bytes ? json(Platform::base64Encoded(*bytes)) : json();
    });
}

TEST(JSONVectors, readAsFoundationReads) {
    expectVectors("json", [](const json& in) -> json {
        const auto bytes = Platform::base64Decoded(in.get<std::string>());
        if (!bytes) {
            throw std::invalid_argument("the input is not base64");
        }
        const auto value = Platform::JSONValue::parse(*bytes);
        if (!value) {
            return nullptr;
        }
        if (value->array() != nullptr) {
            return {{"top", "array"}};
        }
        json keys = json::array();
        json strings = json::object();
        for (const auto& [name, member] : *value->object()) {
            keys.push_back(name);
            if (const std::string* string = member.string()) {
                strings[name] = *string;
            }
        }
        return {{"top", "object"}, {"keys", keys}, {"strings", strings}};
    });
}

TEST(JSONVectors, stringLiteralsAreFoundations) {
    expectVectors("js-string",
                  [](const json& in) -> json { return Platform::jsonStringLiteral(in.get<std::string>()); });
}

} // namespace
