#pragma once

#include "Platform/AppKit/View.h"

#import <AppKit/AppKit.h>

namespace Platform {

/// Owns the NSView of a view. The NSView refers to the view weakly (`viewOf`). Derived classes add the state
/// that some kinds of views need.
struct View::Native {
    explicit Native(NSView* _Nonnull made)
        : view(made) {}
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native() = default;

    /// Adds the NSView of a subview in front of the others.
    virtual void addSubview(NSView* _Nonnull subview) { [view addSubview:subview]; }

    NSView* __strong _Nonnull const view;
};

/// Keeps an attribute of `view` equal to that of `other`, or to a constant if `other` is nil.
void constrainEqual(NSView* _Nonnull view, NSLayoutAttribute attribute, NSView* _Nullable other,
                    double constant = 0);

NSLayoutConstraintOrientation toNSOrientation(Orientation orientation);

} // namespace Platform
