#pragma once

#include <string>

namespace Platform {

/// A picture out of the system's own set, so that it follows the system's look.
///
/// `symbolName` is the symbol's name on macOS ("chevron.left"); Linux maps it onto the icon of the same
/// meaning and stops the process at a name that it does not know, for then the program itself is wrong.
struct Image {
    /// The symbol, and its name for assistive technology.
    std::string symbolName;
    std::string accessibilityDescription;

    friend bool operator==(const Image&, const Image&) = default;
};

/// The system's own font at a size in points.
struct Font {
    /// In points.
    double systemFontSize = 13;

    friend bool operator==(const Font&, const Font&) = default;
};

/// The colours that views can have.
enum class Color {
    none,
    /// The accent colour that the user chose for the system; the theme's on Linux.
    controlAccent,
};

} // namespace Platform
