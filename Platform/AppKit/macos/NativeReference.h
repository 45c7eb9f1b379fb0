#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/View.h"

#import <AppKit/AppKit.h>

#include <memory>

/// From AppKit's objects back to ours. AppKit's object holds ours weakly; ours owns AppKit's. Main thread
/// only.
namespace Platform {

void setReference(NSView* _Nonnull native, const std::weak_ptr<View>& view);
void setReference(NSMenuItem* _Nonnull native, const std::weak_ptr<MenuItem>& item);

/// Nothing for what is not ours, or once ours has gone.
std::shared_ptr<View> viewOf(id _Nullable native);
std::shared_ptr<MenuItem> menuItemOf(id _Nullable native);

} // namespace Platform
