#pragma once

namespace Platform {

/// A width and a height. One point is one logical pixel.
struct Size {
    /// The dimensions, in points.
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

/// A view's rectangle in the coordinate system of its superview, whose origin is the top left corner.
struct Rect {
    /// The top left corner and the size, in points.
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// Distances between the edges of a view and its content.
struct EdgeInsets {
    /// The distances, in points.
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    friend bool operator==(const EdgeInsets&, const EdgeInsets&) = default;
};

/// The orientation of a stack, or the dimension that a length applies to.
enum class Orientation { horizontal, vertical };

} // namespace Platform
