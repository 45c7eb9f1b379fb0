#include "Platform/AppKit/Menu.h"

#include "Platform/AppKit/macos/MenuNative.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/Foundation/macos/Conversions.h"

namespace Platform {

namespace {

void menuNeedsUpdate(NSMenu* native) noexcept;

} // namespace

} // namespace Platform

/// Forwards update requests of an NSMenu to the delegate of the `Menu` that the NSMenu represents.
@interface KeyloftMenuDelegate : NSObject <NSMenuDelegate>
@end

@implementation KeyloftMenuDelegate
- (void)menuNeedsUpdate:(NSMenu*)menu {
    Platform::menuNeedsUpdate(menu);
}
@end

namespace Platform {

namespace {

KeyloftMenuDelegate* menuDelegate() {
    static KeyloftMenuDelegate* const delegate = [[KeyloftMenuDelegate alloc] init];
    return delegate;
}

NSMenuItem* makeNativeItem(const std::shared_ptr<MenuItem>& item) {
    if (item->isSeparator()) {
        return [NSMenuItem separatorItem];
    }
    NSMenuItem* const native = makeNativeMenuItem(*item);
    setReference(native, item);
    if (item->submenu() != nullptr) {
        native.submenu = makeNativeMenu(item->submenu());
    }
    return native;
}

void fill(NSMenu* native, const Menu& menu) {
    [native removeAllItems];
    for (const auto& item : menu.items()) {
        [native addItem:makeNativeItem(item)];
    }
}

void menuNeedsUpdate(NSMenu* native) noexcept {
    const auto menu = menuOf(native);
    const auto delegate = menu != nullptr ? menu->delegate() : nullptr;
    if (delegate != nullptr) {
        delegate->menuNeedsUpdate(*menu);
        fill(native, *menu);
    }
}

} // namespace

NSMenu* makeNativeMenu(const std::shared_ptr<Menu>& menu) {
    NSMenu* const native = [[NSMenu alloc] initWithTitle:toNSString(menu->title())];
    setReference(native, menu);
    fill(native, *menu);
    if (menu->delegate() != nullptr) {
        native.delegate = menuDelegate();
    }
    return native;
}

NSMenu* nativeMenuOf(const Menu& menu, NSMenu* root) {
    if (root == nil || menuOf(root).get() == &menu) {
        return root;
    }
    for (NSMenuItem* item in root.itemArray) {
        if (NSMenu* const found = nativeMenuOf(menu, item.submenu); found != nil) {
            return found;
        }
    }
    return nil;
}

NSMenuItem* makeNativeMenuItem(const MenuItem& item) {
    NSMenuItem* const native =
        [[NSMenuItem alloc] initWithTitle:toNSString(item.title())
                                   action:item.action() ? selectorFor(*item.action()) : nullptr
                            keyEquivalent:toNSString(item.keyEquivalent())];
    // AppKit's default mask is Command, and an upper-case letter implies Shift. Only Option must be set.
    if (item.keyEquivalentModifiers() == ModifierFlags::optionCommand) {
        native.keyEquivalentModifierMask = NSEventModifierFlagOption | NSEventModifierFlagCommand;
    }
    if (item.representedURL()) {
        native.representedObject = toNSURL(*item.representedURL());
    }
    return native;
}

} // namespace Platform
