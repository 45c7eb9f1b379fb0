#pragma once

#include "Platform/AppKit/View.h"

#import <AppKit/AppKit.h>

namespace Platform {

/// Owns AppKit's view of a view; AppKit's view refers to ours weakly (`viewOf`). Views that need more derive
/// from this.
struct View::Native {
    explicit Native(NSView* _Nonnull made)
        : view(made) {}
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native() = default;

    /// Adds a subview's view in front of the others.
    virtual void addSubview(NSView* _Nonnull subview) { [view addSubview:subview]; }

    NSView* __strong _Nonnull const view;
};

/// Keeps an attribute of `view` equal to that of `other`, or to a constant if `other` is nil.
void constrainEqual(NSView* _Nonnull view, NSLayoutAttribute attribute, NSView* _Nullable other,
                    double constant = 0);

NSLayoutConstraintOrientation toNSOrientation(Orientation orientation);

} // namespace Platform
