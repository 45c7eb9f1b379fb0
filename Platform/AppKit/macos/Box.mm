#include "Platform/AppKit/Box.h"

#include "Platform/AppKit/macos/ViewNative.h"

namespace Platform {

std::unique_ptr<View::Native> Box::makeNative() {
    NSBox* const box = [[NSBox alloc] initWithFrame:NSZeroRect];
    box.boxType = NSBoxSeparator;
    return std::make_unique<Native>(box);
}

} // namespace Platform
