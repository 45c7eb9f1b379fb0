#include "KeyloftBrowserKit/AddressInput.h"
#include "KeyloftBrowserKit/Bookmark.h"
#include "Platform/Foundation/Base64.h"
#include "Tests/Support/Vectors.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using KeyloftBrowserKit::AddressInput;
using KeyloftBrowserKit::Bookmark;
using nlohmann::json;
using Platform::URL;
using TestSupport::expectVectors;

json textOf(const std::optional<URL>& url) { return url ? json(url->absoluteString()) : json(); }

TEST(AddressInputVectors, resolve) {
    expectVectors("resolve",
                  [](const json& in) { return textOf(AddressInput::resolve(in.get<std::string>())); });
}

TEST(AddressInputVectors, search) {
    expectVectors("search",
                  [](const json& in) { return textOf(AddressInput::search(in.get<std::string>())); });
}

TEST(BookmarkVectors, encode) {
    expectVectors("bookmarks-encode", [](const json& in) -> json {
        std::vector<Bookmark> bookmarks;
        for (const json& element : in) {
            const auto url = URL::fromString(element.at("url").get<std::string>());
            if (!url) {
                return "no URL: " + element.at("url").get<std::string>();
            }
            bookmarks.push_back({.title = element.at("title").get<std::string>(), .url = *url});
        }
        return Bookmark::encode(bookmarks);
    });
}

TEST(BookmarkVectors, decode) {
    expectVectors("bookmarks-decode", [](const json& in) -> json {
        const auto bytes = Platform::base64Decoded(in.get<std::string>());
        if (!bytes) {
            return "no base64";
        }
        const auto bookmarks = Bookmark::decode(*bytes);
        if (!bookmarks) {
            return nullptr;
        }
        json list = json::array();
        for (const Bookmark& bookmark : *bookmarks) {
            list.push_back({{"title", bookmark.title}, {"url", bookmark.url.absoluteString()}});
        }
        return list;
    });
}

TEST(BookmarkVectors, whatWasEncodedIsDecodedAgain) {
    for (const auto& row : TestSupport::readVectors("bookmarks-encode")) {
        const auto bookmarks = Bookmark::decode(row.out.get<std::string>());
        ASSERT_TRUE(bookmarks) << row.line;
        EXPECT_EQ(Bookmark::encode(*bookmarks), row.out.get<std::string>()) << row.line;
    }
}

} // namespace
