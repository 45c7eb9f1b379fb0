#pragma once

#include "Platform/AppKit/Menu.h"

#import <AppKit/AppKit.h>

#include <memory>

namespace Platform {

/// Creates an NSMenu with the same items and submenus. If `menu` has a delegate, the NSMenu is filled again
/// whenever AppKit is about to show it or to look up its keys.
NSMenu* _Nonnull makeNativeMenu(const std::shared_ptr<Menu>& menu);

/// Returns the NSMenu that represents `menu`, which is `root` or one of its submenus at any level, or nil.
NSMenu* _Nullable nativeMenuOf(const Menu& menu, NSMenu* _Nullable root);

/// Creates an NSMenuItem with the same title, action, key and represented URL. It does not refer to `item`.
NSMenuItem* _Nonnull makeNativeMenuItem(const MenuItem& item);

} // namespace Platform
