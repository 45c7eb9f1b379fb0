#pragma once

#include "Platform/AppKit/Menu.h"

#import <AppKit/AppKit.h>

#include <memory>

namespace Platform {

/// Creates an NSMenu with the same items and submenus. If `menu` has a delegate, the NSMenu is repopulated
/// whenever AppKit is about to show it or to look up its key equivalents.
NSMenu* _Nonnull makeNativeMenu(const std::shared_ptr<Menu>& menu);

/// Returns the NSMenu that represents `menu`: `root` or one of its submenus. Returns nil if it is not found.
NSMenu* _Nullable nativeMenuOf(const Menu& menu, NSMenu* _Nullable root);

/// Creates an NSMenuItem with the title, action, key and URL of `item`, but without a reference to `item`.
NSMenuItem* _Nonnull makeNativeMenuItem(const MenuItem& item);

} // namespace Platform
