#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/View.h"
#include "Platform/AppKit/Window.h"

#import <AppKit/AppKit.h>

#include <memory>

/// References from AppKit's objects to ours. Main thread only.
///
/// Views and windows own their AppKit objects, which refer back to them weakly. Menu items do not refer to
/// their NSMenuItems, which own them, because AppKit may send the action of an NSMenuItem that has left its
/// menu.
namespace Platform {

void setReference(NSView* _Nonnull native, const std::weak_ptr<View>& view);
void setReference(NSWindow* _Nonnull native, const std::weak_ptr<Window>& window);
void setReference(NSMenu* _Nonnull native, const std::weak_ptr<Menu>& menu);
void setReference(NSMenuItem* _Nonnull native, const std::shared_ptr<MenuItem>& item);

/// Returns our object that `native` refers to. Null if `native` is not ours, or if our object has been
/// destroyed.
std::shared_ptr<View> viewOf(id _Nullable native);
std::shared_ptr<Window> windowOf(id _Nullable native);
std::shared_ptr<Menu> menuOf(id _Nullable native);
std::shared_ptr<MenuItem> menuItemOf(id _Nullable native);

/// Returns our view that `responder` represents or is inside of, or null. A field editor counts as the field
/// that it edits.
std::shared_ptr<View> viewAround(NSResponder* _Nullable responder);

} // namespace Platform
