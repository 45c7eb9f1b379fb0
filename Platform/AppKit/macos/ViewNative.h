#pragma once

#include "Platform/AppKit/View.h"

#import <AppKit/AppKit.h>

namespace Platform {

/// Owns the NSView of a view. The NSView holds a weak reference to the view; see `viewOf`.
struct View::Native {
    explicit Native(NSView* _Nonnull made)
        : view(made) {}
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native() = default;

    /// Adds the NSView of a subview in front of the other subviews.
    virtual void addSubview(NSView* _Nonnull subview) { [view addSubview:subview]; }

    NSView* __strong _Nonnull const view;
};

/// Constrains an attribute of `view` to that of `other` plus `constant`, or to `constant` if `other` is nil.
void constrainEqual(NSView* _Nonnull view, NSLayoutAttribute attribute, NSView* _Nullable other,
                    double constant = 0);

NSLayoutConstraintOrientation toNSOrientation(Orientation orientation);

} // namespace Platform
