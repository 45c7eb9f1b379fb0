#include "KeyloftBrowserKit/BuiltInURL.h"

#include <gtest/gtest.h>

namespace {

using KeyloftBrowserKit::builtInURL;

TEST(BuiltInURL, isTheURLOfItsText) { EXPECT_EQ(builtInURL("https://x.test/a b").path(), "/a b"); }

TEST(BuiltInURLDeathTest, aTextThatIsNotAURLStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(builtInURL("https://x y/"), "a built-in URL does not parse: https://x y/");
}

} // namespace
