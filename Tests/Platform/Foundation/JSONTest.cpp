#include "Platform/Foundation/JSON.h"

#include "Tests/Support/Present.h"

#include <gtest/gtest.h>

namespace {

using Platform::JSONSlashes;
using Platform::JSONValue;
using TestSupport::present;

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t index = 0; index < count; ++index) {
        all += text;
    }
    return all;
}

TEST(JSON, membersAreReachedByNameAndKind) {
    const JSONValue value = present(JSONValue::parse(
        R"({"s":"x\u0000é","n":-1.5,"i":7,"b":true,"z":null,"a":[1,{"k":"v"}],"o":{"p":{"q":"r"}}})"));
    EXPECT_EQ(*value.stringMember("s"), std::string("x\0é", 4));
    EXPECT_EQ(*value.member("n")->number(), -1.5);
    EXPECT_EQ(*value.member("i")->number(), 7);
    EXPECT_TRUE(*value.member("b")->boolean());
    EXPECT_TRUE(value.member("z")->isNull());
    EXPECT_EQ(value.member("a")->array()->size(), 2U);
    EXPECT_EQ(*value.member("a")->array()->at(1).stringMember("k"), "v");
    EXPECT_EQ(*value.member("o")->member("p")->stringMember("q"), "r");
    for (const auto* const name : {"n", "i", "b", "z", "a", "o", "missing"}) {
        EXPECT_EQ(value.stringMember(name), nullptr) << name;
    }
    EXPECT_EQ(value.member("missing"), nullptr);
    EXPECT_EQ(value.member("a")->member("k"), nullptr) << "an array has no members";
}

TEST(JSON, theLastOfSeveralEqualNamesCounts) {
    const JSONValue value =
        present(JSONValue::parse(R"({"a":"x","b":1,"a":"y","o":{"c":"q","c":"z"},"a":"w"})"));
    EXPECT_EQ(*value.stringMember("a"), "w");
    EXPECT_EQ(*value.member("o")->stringMember("c"), "z");
    EXPECT_EQ(present(JSONValue::parse(R"({"a":"x","a":1})")).stringMember("a"), nullptr);
    EXPECT_EQ(present(JSONValue::parse(R"({"a":1,"\u0061":"x"})")).object()->size(), 1U);
}

TEST(JSON, onlyAnArrayOrObjectAndNothingElseIsRead) {
    for (const auto* const text : {"",
                                   " ",
                                   "null",
                                   "true",
                                   "1",
                                   "\"x\"",
                                   "[1,]",
                                   "{\"a\":1,}",
                                   "[1] [2]",
                                   "{\"a\" 1}",
                                   "[01]",
                                   "['x']",
                                   "[\"\t\"]",
                                   "[NaN]",
                                   "[1e400]",
                                   "[-1e400]",
                                   R"(["\uD800"])",
                                   "[\"\xFF\"]",
                                   "[\"\xED\xA0\x80\"]",
                                   "//\n[]",
                                   "[",
                                   "{",
                                   "[1",
                                   "\uFEFF\uFEFF[]",
                                   "[]\uFEFF"}) {
        EXPECT_FALSE(JSONValue::parse(text)) << text;
    }
    EXPECT_FALSE(JSONValue::parse(std::string_view("[]\0", 3)));
    EXPECT_FALSE(JSONValue::parse(std::string_view("[]\0garbage", 10)));
    EXPECT_TRUE(JSONValue::parse("\uFEFF [] "));
}

TEST(JSON, nestingIsTakenUpToItsLimit) {
    const std::size_t most = JSONValue::maxDepth;
    EXPECT_TRUE(JSONValue::parse(repeated("[", most) + repeated("]", most)));
    EXPECT_FALSE(JSONValue::parse(repeated("[", most + 1) + repeated("]", most + 1)));
    EXPECT_TRUE(JSONValue::parse(repeated(R"({"a":)", most - 1) + "[]" + repeated("}", most - 1)));
    EXPECT_FALSE(JSONValue::parse(repeated(R"({"a":)", most) + "[]" + repeated("}", most)));
    EXPECT_TRUE(JSONValue::parse("[" + repeated("[[]],", 2000) + "[]]")) << "depth, not number";
}

TEST(JSON, hugeInputsNeitherCrashNorOverflowTheStack) {
    constexpr std::size_t size = 4'000'000;
    EXPECT_FALSE(JSONValue::parse(std::string(size, '[')));
    EXPECT_FALSE(JSONValue::parse("[" + std::string(size, '"')));
    EXPECT_FALSE(JSONValue::parse("[\"" + std::string(size, '\\')));
    EXPECT_FALSE(JSONValue::parse("[" + std::string(size, '9') + "]")) << "a number beyond a double";
    const JSONValue text = present(JSONValue::parse("[\"" + std::string(size, 'x') + "\"]"));
    EXPECT_EQ(text.array()->front().string()->size(), size);
    const JSONValue list = present(JSONValue::parse("[" + repeated("1,", 500'000) + "1]"));
    EXPECT_EQ(list.array()->size(), 500'001U);
}

TEST(JSON, copiesAreEqualAndIndependentOfTheOriginal) {
    JSONValue original = present(JSONValue::parse(R"({"a":[1,"x",{"b":null}]})"));
    const JSONValue copy = original;
    EXPECT_EQ(copy, original);
    original = JSONValue();
    EXPECT_EQ(copy, JSONValue::parse(R"( {"a" : [1.0,"\u0078",{"b":null}]} )"));
    EXPECT_NE(copy, JSONValue::parse(R"({"a":[1,"x",{"b":false}]})"));
    EXPECT_NE(JSONValue(0), JSONValue(false));
    EXPECT_NE(JSONValue(""), JSONValue());
}

TEST(JSON, compactHasSortedMembersAndNoSpace) {
    const JSONValue value = JSONValue::Object{
        {"s", "a/b"}, {"n", 1}, {"r", JSONValue::Array{true, nullptr, 0.5, -3}}, {"", JSONValue::Object{}}};
    EXPECT_EQ(compactJSON(value, JSONSlashes::plain), R"({"":{},"n":1,"r":[true,null,0.5,-3],"s":"a/b"})");
    EXPECT_EQ(compactJSON(JSONValue::Array{"/"}, JSONSlashes::escaped), R"(["\/"])");
}

TEST(JSON, prettyHasOneMemberALine) {
    EXPECT_EQ(prettyJSON(JSONValue::Array{}), "[\n\n]");
    EXPECT_EQ(prettyJSON(JSONValue::Array{JSONValue::Object{{"url", "a/b"}, {"title", "x"}}, 1}),
              "[\n  {\n    \"title\" : \"x\",\n    \"url\" : \"a\\/b\"\n  },\n  1\n]");
}

TEST(JSON, literalsEscapeWhatAScriptCouldMistake) {
    EXPECT_EQ(Platform::jsonStringLiteral("</script>\"\\\b\f\n\r\t\x01\x1F\x7F\u2028é"),
              "\"<\\/script>\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u001f\x7F\u2028é\"");
    EXPECT_EQ(Platform::jsonStringLiteral(std::string_view("\0", 1)), "\"\\u0000\"");
}

TEST(JSON, whatIsWrittenIsReadBack) {
    JSONValue::Object members;
    for (int byte = 0; byte < 128; ++byte) {
        members.emplace(std::string(1, static_cast<char>(byte)), JSONValue(byte * 1e15 + 0.125));
    }
    const JSONValue value = std::move(members);
    EXPECT_EQ(JSONValue::parse(compactJSON(value, JSONSlashes::plain)), value);
    EXPECT_EQ(JSONValue::parse(prettyJSON(value)), value);
}

} // namespace
