#include "Keyloft/ProgressBar.h"

#include "Platform/AppKit/Application.h"

#include <gtest/gtest.h>

using Keyloft::ProgressBar;
using namespace Platform;

namespace {

std::shared_ptr<ProgressBar> makeBar(double width, double height) {
    Application::shared().prepare();
    auto bar = ProgressBar::create();
    bar->setFrame({.x = 7, .y = 9, .width = width, .height = height});
    return bar;
}

} // namespace

TEST(ProgressBar, isEmptyInactiveAndHiddenAtFirst) {
    const auto bar = makeBar(600, 2);
    EXPECT_EQ(bar->progress(), 0);
    EXPECT_FALSE(bar->isActive());
    EXPECT_TRUE(bar->fill()->isHidden());
    EXPECT_FALSE(bar->isHidden());
}

TEST(ProgressBar, onlyItsFillHasAColor) {
    const auto bar = makeBar(600, 2);
    ASSERT_EQ(bar->subviews().size(), 1U);
    EXPECT_EQ(bar->subviews().front(), bar->fill());
    EXPECT_EQ(bar->fill()->backgroundColor(), Color::controlAccent);
    EXPECT_EQ(bar->backgroundColor(), Color::none);
}

TEST(ProgressBar, laysItsFillOutFromTheLeadingEdge) {
    const auto bar = makeBar(600, 3);
    bar->setProgress(0.6);
    bar->layout();
    EXPECT_EQ(bar->fill()->frame(), (Rect{.x = 0, .y = 0, .width = 360, .height = 3}));
    bar->setProgress(0);
    bar->layout();
    EXPECT_EQ(bar->fill()->frame(), (Rect{.x = 0, .y = 0, .width = 0, .height = 3}));
}

TEST(ProgressBar, takesTheProgressAsItIs) {
    const auto bar = makeBar(600, 2);
    bar->setProgress(1.5);
    EXPECT_EQ(bar->progress(), 1.5);
    bar->layout();
    EXPECT_EQ(bar->fill()->frame().width, 900);
    bar->setProgress(-0.5);
    bar->layout();
    EXPECT_EQ(bar->fill()->frame().width, -300);
}

TEST(ProgressBar, progressAloneMovesNothingBeforeTheNextLayout) {
    const auto bar = makeBar(600, 2);
    bar->setProgress(0.5);
    bar->layout();
    bar->setProgress(0.75);
    EXPECT_EQ(bar->fill()->frame().width, 300);
    bar->layout();
    EXPECT_EQ(bar->fill()->frame().width, 450);
}

TEST(ProgressBar, beingActiveAloneShowsNothing) {
    const auto bar = makeBar(600, 2);
    bar->setActive(true);
    EXPECT_TRUE(bar->isActive());
    EXPECT_TRUE(bar->fill()->isHidden());
}

TEST(ProgressBar, endsWithItsFill) {
    std::weak_ptr<View> fill;
    std::weak_ptr<ProgressBar> weak;
    {
        const auto bar = makeBar(600, 2);
        weak = bar;
        fill = bar->fill();
    }
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(fill.expired());
}
