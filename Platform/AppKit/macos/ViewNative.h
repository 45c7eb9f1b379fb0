#pragma once

#include "Platform/AppKit/View.h"

#import <AppKit/AppKit.h>

namespace Platform {

/// AppKit's view behind a view. It is owned here; it knows ours weakly (`viewOf`). Views that need more
/// derive from this.
struct View::Native {
    explicit Native(NSView* _Nonnull made)
        : view(made) {}
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native() = default;

    /// Puts a subview's own view in, in front of the others.
    virtual void addSubview(NSView* _Nonnull subview) { [view addSubview:subview]; }

    NSView* __strong _Nonnull const view;
};

/// Keeps an attribute of `view` equal to that of `other`, or to a constant if there is no other view.
void constrainEqual(NSView* _Nonnull view, NSLayoutAttribute attribute, NSView* _Nullable other,
                    double constant = 0);

NSLayoutConstraintOrientation toNSOrientation(Orientation orientation);

} // namespace Platform
