#include "Platform/WebKit/UserContentController.h"

#include <gtest/gtest.h>

#include <string>

namespace Platform::Tests {

TEST(ScriptMessage, takesItsBodyFromJSON) {
    EXPECT_EQ(ScriptMessage::bodyOf(R"({"a":[1,null,true]})"),
              JSONValue(JSONValue::Object{{"a", JSONValue::Array{1, nullptr, true}}}));
    EXPECT_EQ(ScriptMessage::bodyOf(R"("text")"), JSONValue("text"));
    EXPECT_EQ(ScriptMessage::bodyOf("1.5"), JSONValue(1.5));
    EXPECT_EQ(ScriptMessage::bodyOf("null"), JSONValue(nullptr));
}

TEST(ScriptMessage, hasNoBodyIfThereIsNoJSON) {
    EXPECT_TRUE(ScriptMessage::bodyOf("").isNull());
    EXPECT_TRUE(ScriptMessage::bodyOf("1,2").isNull());
    EXPECT_TRUE(ScriptMessage::bodyOf("{").isNull());
}

TEST(ScriptMessage, hasNoBodyIfTheJSONIsNestedTooDeep) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_FALSE(ScriptMessage::bodyOf(nested(JSONValue::maxDepth - 1)).isNull());
    EXPECT_TRUE(ScriptMessage::bodyOf(nested(JSONValue::maxDepth)).isNull());
}

} // namespace Platform::Tests
