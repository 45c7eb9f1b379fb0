#include "Platform/AppKit/LayoutConstraint.h"

#include "Platform/AppKit/macos/ViewNative.h"
#include "Platform/Foundation/FatalError.h"

namespace Platform {

namespace {

NSLayoutAttribute toNSLayoutAttribute(LayoutAttribute attribute) {
    switch (attribute) {
    case LayoutAttribute::top:
        return NSLayoutAttributeTop;
    case LayoutAttribute::leading:
        return NSLayoutAttributeLeading;
    case LayoutAttribute::trailing:
        return NSLayoutAttributeTrailing;
    case LayoutAttribute::bottom:
        return NSLayoutAttributeBottom;
    case LayoutAttribute::width:
        return NSLayoutAttributeWidth;
    case LayoutAttribute::height:
        return NSLayoutAttributeHeight;
    }
    fatalError("a layout constraint has an unknown attribute");
}

} // namespace

void LayoutConstraint::apply(const std::vector<LayoutConstraint>& constraints) {
    NSMutableArray<NSLayoutConstraint*>* const all = [NSMutableArray array];
    for (const LayoutConstraint& constraint : constraints) {
        const auto superview = constraint.view_->superview();
        if (constraint.toSuperview_ && superview == nullptr) {
            fatalError("a layout constraint names the superview of a view that has none");
        }
        // The superview first: it takes its subviews in when it is made.
        NSView* const other = constraint.toSuperview_ ? superview->native().view : nil;
        NSView* const view = constraint.view_->native().view;
        view.translatesAutoresizingMaskIntoConstraints = NO;
        const NSLayoutAttribute attribute = toNSLayoutAttribute(constraint.attribute_);
        [all addObject:[NSLayoutConstraint
                           constraintWithItem:view
                                    attribute:attribute
                                    relatedBy:NSLayoutRelationEqual
                                       toItem:other
                                    attribute:other != nil ? attribute : NSLayoutAttributeNotAnAttribute
                                   multiplier:1
                                     constant:constraint.constant_]];
    }
    [NSLayoutConstraint activateConstraints:all];
}

} // namespace Platform
