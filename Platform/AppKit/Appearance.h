#pragma once

#include <string>

namespace Platform {

/// A system symbol on macOS or a themed icon on Linux, so that the image matches the user's desktop.
struct Image {
    /// The name of the symbol on macOS, such as "chevron.left". Linux maps it to an icon with the same
    /// meaning. An unknown name is a programming error and aborts the process.
    std::string symbolName;
    /// The label for assistive technology.
    std::string accessibilityDescription;

    friend bool operator==(const Image&, const Image&) = default;
};

/// The system font at a given size.
struct Font {
    /// The font size, in points.
    double systemFontSize = 13;

    friend bool operator==(const Font&, const Font&) = default;
};

/// Background colors of views.
enum class Color {
    none,
    /// The accent color: the user's choice on macOS, the theme's on Linux.
    controlAccent,
};

} // namespace Platform
