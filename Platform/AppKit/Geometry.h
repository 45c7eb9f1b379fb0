#pragma once

namespace Platform {

/// Lengths are points: one point is one logical pixel. The origin of a rectangle is its top left corner.
struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    friend bool operator==(const Rect&, const Rect&) = default;
};

struct EdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    friend bool operator==(const EdgeInsets&, const EdgeInsets&) = default;
};

enum class Orientation { horizontal, vertical };

} // namespace Platform
