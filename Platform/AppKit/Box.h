#pragma once

#include "Platform/AppKit/View.h"

namespace Platform {

/// A line between two parts of a window, one point thick.
class Box : public View {
public:
    static std::shared_ptr<Box> createSeparator();

protected:
    Box() = default;
    std::unique_ptr<Native> makeNative() override;
};

} // namespace Platform
