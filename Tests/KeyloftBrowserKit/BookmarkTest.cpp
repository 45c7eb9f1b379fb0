#include "KeyloftBrowserKit/Bookmark.h"

#include "Tests/Support/Present.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

using KeyloftBrowserKit::Bookmark;
using Platform::URL;
using TestSupport::present;

Bookmark bookmark(std::string_view title, std::string_view url) {
    return {.title = std::string(title), .url = present(URL::fromString(url))};
}

TEST(Bookmark, isEqualIfTitleAndURLAre) {
    const Bookmark one = bookmark("a", "https://x.test/");
    EXPECT_EQ(one, bookmark("a", "https://x.test/"));
    EXPECT_NE(one, bookmark("b", "https://x.test/"));
    EXPECT_NE(one, bookmark("a", "https://x.test"));
}

TEST(Bookmark, itsTitleInOneLineHasASpaceForEachLineBreak) {
    EXPECT_EQ(bookmark("One line, é", "x:").titleInOneLine(), "One line, é");
    EXPECT_EQ(bookmark("\na\r\nb\rc\n\nd\n", "x:").titleInOneLine(), " a b c  d ");
    EXPECT_EQ(bookmark("a\vb\fc\u0085d\u2028e\u2029f", "x:").titleInOneLine(), "a b c d e f");
    EXPECT_EQ(bookmark("", "x:").titleInOneLine(), "");
}

TEST(Bookmark, aListIsPrettyPrintedWithSortedKeysAndEscapedSlashes) {
    EXPECT_EQ(
        Bookmark::encode(std::vector{bookmark("A \"b\" c/d", "https://x.test/"), bookmark("é", "mailto:x")}),
        "[\n"
        "  {\n"
        "    \"title\" : \"A \\\"b\\\" c\\/d\",\n"
        "    \"url\" : \"https:\\/\\/x.test\\/\"\n"
        "  },\n"
        "  {\n"
        "    \"title\" : \"é\",\n"
        "    \"url\" : \"mailto:x\"\n"
        "  }\n"
        "]");
}

TEST(Bookmark, anEmptyListHasALineOfItsOwn) { EXPECT_EQ(Bookmark::encode({}), "[\n\n]"); }

TEST(Bookmark, plainAndEscapedSlashesAreRead) {
    const auto list = present(Bookmark::decode(
        R"([{"title":"a/b","url":"https://x.test/"},{"title":"a\/b","url":"https:\/\/x.test\/"}])"));
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list.at(0), list.at(1));
}

TEST(Bookmark, unknownKeysArePassedOverWhateverTheyHold) {
    const auto list = present(Bookmark::decode(
        R"([{"a":{"title":1,"url":[{}]},"url":"https://x.test/","b":[["title","x"]],"title":"t","c":null,"d":1}])"));
    EXPECT_EQ(list, std::vector{bookmark("t", "https://x.test/")});
}

TEST(Bookmark, anythingElseIsNoList) {
    for (const std::string_view text : {
             "",
             "null",
             "1",
             "\"[]\"",
             "{}",
             R"({"title":"t","url":"https://x.test/"})",
             "[null]",
             "[1]",
             "[\"https://x.test/\"]",
             "[[]]",
             R"([[{"title":"t","url":"https://x.test/"}]])",
             "[{}]",
             R"([{"title":"t"}])",
             R"([{"url":"https://x.test/"}])",
             R"([{"title":null,"url":"https://x.test/"}])",
             R"([{"title":1,"url":"https://x.test/"}])",
             R"([{"title":[],"url":"https://x.test/"}])",
             R"([{"title":{},"url":"https://x.test/"}])",
             R"([{"title":{"title":"t"},"url":"https://x.test/"}])",
             R"([{"title":"t","url":null}])",
             R"([{"title":"t","url":{"url":"https://x.test/"}}])",
             R"([{"title":"t","url":["https://x.test/"]}])",
             R"([{"title":"t","url":""}])",
             R"([{"title":"t","url":"http://[::1"}])",
             R"([{"title":"t","url":"https://x.test/"},{"title":"u"}])",
             R"([{"title":"t","url":"https://x.test/"}] x)",
             R"([{"title":"t","url":"https://x.test/"}][])",
         }) {
        EXPECT_FALSE(Bookmark::decode(text)) << text;
    }
}

TEST(Bookmark, aMemberMissingFromASecondObjectIsNotTakenFromTheFirst) {
    EXPECT_FALSE(Bookmark::decode(R"([{"title":"t","url":"https://x.test/"},{"url":"https://x.test/"}])"));
    EXPECT_FALSE(Bookmark::decode(R"([{"title":"t","url":"https://x.test/"},{"title":"t"}])"));
}

TEST(Bookmark, whatIsEncodedIsDecodedAgain) {
    const std::vector<Bookmark> list = {bookmark("", "https://x.test/"),
                                        bookmark("\"\\/\b\f\n\r\t\x01\x7f", "a%20b"),
                                        bookmark(std::string_view("a\0b", 3), "https://x.test/?a=b&c#d"),
                                        bookmark("日本 🦊 \u2028", "https://日本.example/")};
    EXPECT_EQ(Bookmark::decode(Bookmark::encode(list)), list);
}

TEST(Bookmark, anIllFormedTitleIsRepairedRatherThanLosingTheFile) {
    const auto list =
        present(Bookmark::decode(Bookmark::encode(std::vector{bookmark("a\xff", "https://x.test/")})));
    EXPECT_EQ(list.front().title, "a\uFFFD");
}

TEST(Bookmark, deepNestingIsRefusedWithoutDeepRecursion) {
    const std::string arrays(1'000'000, '[');
    EXPECT_FALSE(Bookmark::decode(arrays));
    const auto withDepth = [](std::size_t depth) {
        return R"([{"title":"t","url":"https://x.test/","x":)" + std::string(depth, '[') +
               std::string(depth, ']') + "}]";
    };
    EXPECT_TRUE(Bookmark::decode(withDepth(510)));
    EXPECT_FALSE(Bookmark::decode(withDepth(511)));
    EXPECT_FALSE(Bookmark::decode(withDepth(5'000'000)));
}

} // namespace
