#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/Foundation/MakeShared.h"

namespace Platform {

/// A line between two parts of a window, one point thick.
class Box : public View {
public:
    static std::shared_ptr<Box> createSeparator() { return makeShared<Box>(); }

protected:
    Box() = default;
    std::unique_ptr<Native> makeNative() override;
};

} // namespace Platform
