#include "Platform/AppKit/LayoutConstraint.h"

#include "Platform/AppKit/MainThread.h"
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

LayoutConstraint LayoutConstraint::equalToSuperview(const std::shared_ptr<View>& view,
                                                    LayoutAttribute attribute) {
    LayoutConstraint constraint;
    constraint.view_ = view;
    constraint.attribute_ = attribute;
    constraint.toSuperview_ = true;
    return constraint;
}

LayoutConstraint LayoutConstraint::equalTo(const std::shared_ptr<View>& view, LayoutAttribute attribute,
                                           double constant) {
    LayoutConstraint constraint;
    constraint.view_ = view;
    constraint.attribute_ = attribute;
    constraint.constant_ = constant;
    return constraint;
}

void LayoutConstraint::activate(const std::vector<LayoutConstraint>& constraints) {
    assertMainThread("LayoutConstraint::activate");
    NSMutableArray<NSLayoutConstraint*>* const all = [NSMutableArray array];
    for (const LayoutConstraint& constraint : constraints) {
        const auto superview = constraint.view_->superview();
        const bool isLength = constraint.attribute_ == LayoutAttribute::width ||
                              constraint.attribute_ == LayoutAttribute::height;
        const bool isKnown = constraint.toSuperview_
                                 ? superview != nullptr && constraint.attribute_ != LayoutAttribute::height
                                 : isLength;
        if (!isKnown) {
            fatalError("a layout constraint has a form that this system does not know");
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
