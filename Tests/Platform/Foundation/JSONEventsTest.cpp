#include "Platform/Foundation/JSONEvents.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

/// Writes down what it is told.
class Recorder final : public Platform::JSONEvents {
public:
    std::string record;
    /// The event at which to stop reading.
    std::string stopAt;

    bool beginArray() override { return note("["); }
    bool endArray() override { return note("]"); }
    bool beginObject() override { return note("{"); }
    bool endObject() override { return note("}"); }
    bool name(std::string& name) override { return note("n:" + name); }
    bool string(std::string& value) override { return note("s:" + value); }
    bool otherValue() override { return note("o"); }

private:
    bool note(const std::string& event) {
        record += event + ' ';
        return event != stopAt;
    }
};

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

bool isRead(std::string_view text) {
    Recorder recorder;
    return Platform::readJSON(text, recorder);
}

TEST(JSONEvents, areToldInOrder) {
    Recorder recorder;
    EXPECT_TRUE(Platform::readJSON(R"({"a":["x",1,-2,1.5,null,true],"b":{},"c":"\u00e9"})", recorder));
    EXPECT_EQ(recorder.record, "{ n:a [ s:x o o o o o ] n:b { } n:c s:é } ");
}

TEST(JSONEvents, aHandlerStopsTheReading) {
    Recorder recorder;
    recorder.stopAt = "s:b";
    EXPECT_FALSE(Platform::readJSON(R"(["a","b","c"])", recorder));
    EXPECT_EQ(recorder.record, "[ s:a s:b ");
}

TEST(JSONEvents, nestingIsTakenTo512) {
    EXPECT_TRUE(isRead(nested(512)));
    EXPECT_FALSE(isRead(nested(513)));
}

TEST(JSONEvents, millionsOfOpenArraysAreRefusedWithoutDeepRecursion) {
    std::string arrays;
    arrays.resize(10'000'000, '[');
    EXPECT_FALSE(isRead(arrays));
    std::string objects;
    for (int i = 0; i < 1'000'000; ++i) {
        objects += R"({"a":)";
    }
    EXPECT_FALSE(isRead(objects));
}

TEST(JSONEvents, whatIsNoJSONIsRefused) {
    for (const std::string_view text :
         {"", " ", "[", "]", "[1", "[1,]", "{\"a\"}", "{a:1}", "nul", "[] x", "[1e999]", "[\"\xff\"]",
          R"(["\ud800"])", "[01]", "['a']", "[\"a\nb\"]"}) {
        EXPECT_FALSE(isRead(text)) << text;
    }
    EXPECT_FALSE(isRead(std::string_view("[]\0", 3)));
}

TEST(JSONEvents, aByteOrderMarkIsPassedOver) { EXPECT_TRUE(isRead("\xef\xbb\xbf[]")); }

} // namespace
