#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

namespace Platform {

/// How much room a view's content takes along one axis: the least that the toolkit can draw, and what it
/// would like.
struct Extent {
    double minimum = 0;
    double natural = 0;
};

/// How one kind of container measures and places its subviews. Placing only sets frames.
struct ContainerLayout {
    ContainerLayout() = default;
    ContainerLayout(const ContainerLayout&) = delete;
    ContainerLayout& operator=(const ContainerLayout&) = delete;
    virtual ~ContainerLayout() = default;

    virtual Extent measure(Orientation orientation) const = 0;
    virtual void place(Size size) = 0;
};

/// The widget of a view that has subviews. It asks `layout` for its size and the subviews' places, cuts off
/// what does not fit, and makes the subviews' widgets when it comes onto the screen and not before.
std::unique_ptr<View::Native> makeContainer(View& view, std::unique_ptr<ContainerLayout> layout);

/// Shared by the layouts; the views' frames are theirs to set.
struct ViewLayout {
    /// What the view asks for, its constraints and, for a container, its subviews taken into account.
    static Extent measure(const View& view, Orientation orientation);
    static void setFrame(View& view, const Rect& frame) { view.frame_ = frame; }
};

/// Subviews stand where their frames or their constraints to the edges say; the content itself asks for no
/// room.
struct FrameLayout : ContainerLayout {
    explicit FrameLayout(View& view)
        : view_(view) {}

    Extent measure(Orientation orientation) const override;
    void place(Size size) override;

private:
    View& view_;
};

} // namespace Platform
