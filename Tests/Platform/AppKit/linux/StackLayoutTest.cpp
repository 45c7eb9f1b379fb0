#include "Platform/AppKit/linux/StackLayout.h"

#include <gtest/gtest.h>

namespace Platform::Tests {

namespace {

StackItem item(double natural, LayoutPriority hugging,
               LayoutPriority resistance = LayoutPriorities::defaultHigh, double minimum = 0) {
    return {{minimum, natural}, hugging, resistance};
}

using Lengths = std::vector<double>;

} // namespace

TEST(StackLayout, roomThatIsLeftGoesToTheViewThatHugsLeast) {
    EXPECT_EQ(distribute({item(30, 750), item(50, 1), item(20, 250)}, 200), (Lengths{30, 150, 20}));
}

TEST(StackLayout, viewsThatHugAlikeShareTheRoom) {
    EXPECT_EQ(distribute({item(30, 250), item(50, 250), item(20, 750)}, 200), (Lengths{80, 100, 20}));
}

TEST(StackLayout, roomThatIsMissingIsTakenFromTheViewThatResistsLeast) {
    EXPECT_EQ(distribute({item(100, 250, 2), item(100, 250, 1), item(100, 250)}, 240),
              (Lengths{100, 40, 100}));
    EXPECT_EQ(distribute({item(100, 250, 2), item(100, 250, 1), item(100, 250)}, 150), (Lengths{50, 0, 100}));
}

TEST(StackLayout, noViewIsCutBelowItsMinimum) {
    EXPECT_EQ(distribute({item(100, 250, 1, 70), item(100, 250)}, 100), (Lengths{70, 100}));
}

TEST(StackLayout, viewsOfTheUsualResistanceHangOver) {
    EXPECT_EQ(distribute({item(100, 750), item(100, 750), item(0, 250)}, 120), (Lengths{100, 100, 0}));
}

TEST(StackLayout, anEmptyStackIsFine) { EXPECT_EQ(distribute({}, 100), Lengths{}); }

} // namespace Platform::Tests
