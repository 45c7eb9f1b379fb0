#pragma once

namespace Platform {

/// A width and a height. Lengths are points: one point is one logical pixel.
struct Size {
    /// In points.
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle in the coordinates of a superview, whose origin is its top left corner.
struct Rect {
    /// The top left corner and the size, in points.
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// Distances from the edges of a view to its content.
struct EdgeInsets {
    /// In points.
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    friend bool operator==(const EdgeInsets&, const EdgeInsets&) = default;
};

/// The direction of a stack or a length.
enum class Orientation { horizontal, vertical };

} // namespace Platform
