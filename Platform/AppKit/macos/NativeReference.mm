#include "Platform/AppKit/macos/NativeReference.h"

#import <objc/runtime.h>

/// Either of the two is set.
@interface KeyloftReference : NSObject {
@public
    std::weak_ptr<Platform::View> view;
    std::weak_ptr<Platform::MenuItem> menuItem;
}
@end

@implementation KeyloftReference
@end

namespace Platform {

namespace {

/// Its address is the key under which an object keeps its reference.
constexpr char referenceKey = 0;

KeyloftReference* referenceOf(id native) {
    return native != nil ? objc_getAssociatedObject(native, &referenceKey) : nil;
}

void attach(KeyloftReference* reference, id native) {
    objc_setAssociatedObject(native, &referenceKey, reference, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
}

} // namespace

void setReference(NSView* native, const std::weak_ptr<View>& view) {
    KeyloftReference* const reference = [[KeyloftReference alloc] init];
    reference->view = view;
    attach(reference, native);
}

void setReference(NSMenuItem* native, const std::weak_ptr<MenuItem>& item) {
    KeyloftReference* const reference = [[KeyloftReference alloc] init];
    reference->menuItem = item;
    attach(reference, native);
}

std::shared_ptr<View> viewOf(id native) {
    KeyloftReference* const reference = referenceOf(native);
    return reference != nil ? reference->view.lock() : nullptr;
}

std::shared_ptr<MenuItem> menuItemOf(id native) {
    KeyloftReference* const reference = referenceOf(native);
    return reference != nil ? reference->menuItem.lock() : nullptr;
}

} // namespace Platform
