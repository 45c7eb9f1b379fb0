#include "Platform/AppKit/macos/NativeReference.h"

#import <objc/runtime.h>

#include <variant>

namespace {

using Referenced = std::variant<std::weak_ptr<Platform::View>, std::weak_ptr<Platform::Window>,
                                std::weak_ptr<Platform::Menu>, std::shared_ptr<Platform::MenuItem>>;

} // namespace

@interface KeyloftReference : NSObject {
@public
    Referenced referenced;
}
@end

@implementation KeyloftReference
@end

namespace Platform {

namespace {

/// The address of this variable is the key of an object's associated reference.
constexpr char referenceKey = 0;

void attach(const Referenced& referenced, id native) {
    KeyloftReference* const reference = [[KeyloftReference alloc] init];
    reference->referenced = referenced;
    objc_setAssociatedObject(native, &referenceKey, reference, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
}

/// Returns the reference attached to `native`, or an empty reference if it is missing or not of type `Kept`.
template <typename Kept>
Kept referenceOf(id native) {
    KeyloftReference* const reference = native != nil ? objc_getAssociatedObject(native, &referenceKey) : nil;
    if (reference == nil) {
        return {};
    }
    const auto* const kept = std::get_if<Kept>(&reference->referenced);
    return kept != nullptr ? *kept : Kept();
}

/// Returns the field that is being edited if `responder` is a field editor, otherwise `responder`.
NSResponder* editedField(NSResponder* responder) {
    if (![responder isKindOfClass:NSText.class]) {
        return responder;
    }
    auto* const text = static_cast<NSText*>(responder);
    const id field = text.fieldEditor ? text.delegate : nil;
    return [field isKindOfClass:NSResponder.class] ? field : responder;
}

} // namespace

void setReference(NSView* native, const std::weak_ptr<View>& view) { attach(view, native); }
void setReference(NSWindow* native, const std::weak_ptr<Window>& window) { attach(window, native); }
void setReference(NSMenu* native, const std::weak_ptr<Menu>& menu) { attach(menu, native); }
void setReference(NSMenuItem* native, const std::shared_ptr<MenuItem>& item) { attach(item, native); }
std::shared_ptr<View> viewOf(id native) { return referenceOf<std::weak_ptr<View>>(native).lock(); }
std::shared_ptr<Window> windowOf(id native) { return referenceOf<std::weak_ptr<Window>>(native).lock(); }
std::shared_ptr<Menu> menuOf(id native) { return referenceOf<std::weak_ptr<Menu>>(native).lock(); }
std::shared_ptr<MenuItem> menuItemOf(id native) { return referenceOf<std::shared_ptr<MenuItem>>(native); }

std::shared_ptr<View> viewAround(NSResponder* responder) {
    NSResponder* const first = editedField(responder);
    if (![first isKindOfClass:NSView.class]) {
        return nullptr;
    }
    for (auto* native = static_cast<NSView*>(first); native != nil; native = native.superview) {
        if (auto view = viewOf(native)) {
            return view;
        }
    }
    return nullptr;
}

} // namespace Platform
