#pragma once

#include "Platform/AppKit/Menu.h"

#import <AppKit/AppKit.h>

#include <memory>

namespace Platform {

/// AppKit's menu with the same items and submenus. One with a delegate is filled again whenever AppKit is
/// about to show it or to look its keys up.
NSMenu* _Nonnull makeNativeMenu(const std::shared_ptr<Menu>& menu);

/// The menu that stands for `menu`: `root` itself or one below it; or nil.
NSMenu* _Nullable nativeMenuOf(const Menu& menu, NSMenu* _Nullable root);

/// AppKit's item with the same title, action and key, which does not know ours.
NSMenuItem* _Nonnull makeNativeMenuItem(const MenuItem& item);

} // namespace Platform
