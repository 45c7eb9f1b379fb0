#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/View.h"
#include "Platform/AppKit/Window.h"

#import <AppKit/AppKit.h>

#include <memory>

/// References from AppKit objects to our objects. Main thread only.
///
/// Views and windows own their AppKit objects, which refer to them weakly. An NSMenuItem owns its menu item,
/// because AppKit may send the action of an NSMenuItem that has been removed from its menu.
namespace Platform {

void setReference(NSView* _Nonnull native, const std::weak_ptr<View>& view);
void setReference(NSWindow* _Nonnull native, const std::weak_ptr<Window>& window);
void setReference(NSMenu* _Nonnull native, const std::weak_ptr<Menu>& menu);
void setReference(NSMenuItem* _Nonnull native, const std::shared_ptr<MenuItem>& item);

/// Return our object for `native`, or null if no reference was set or our object has been destroyed.
std::shared_ptr<View> viewOf(id _Nullable native);
std::shared_ptr<Window> windowOf(id _Nullable native);
std::shared_ptr<Menu> menuOf(id _Nullable native);
std::shared_ptr<MenuItem> menuItemOf(id _Nullable native);

/// Returns the nearest view at or above `responder`, or null. For a field editor, starts at the edited field.
std::shared_ptr<View> viewAround(NSResponder* _Nullable responder);

} // namespace Platform
