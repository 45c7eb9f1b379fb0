#pragma once

#include "Platform/AppKit/Control.h"
#include "Platform/AppKit/macos/ViewNative.h"

namespace Platform {

/// Common base of the native sides of buttons and text fields.
struct ControlNative : View::Native {
    explicit ControlNative(NSControl* _Nonnull made)
        : Native(made)
        , control(made) {}

    /// Applies the properties that were set before the native side was created.
    void takeOver(const Control& owner);

    void applyTarget(const Control& owner);
    void applyFont(const Control& owner);
    void applyRepresentedURL(const Control& owner);

    static ControlNative& of(View::Native& native) { return static_cast<ControlNative&>(native); }

    NSControl* __strong _Nonnull const control;

private:
    /// The object that represents the target. A strong reference, because AppKit holds the object weakly.
    id __strong _Nullable target_;
};

} // namespace Platform
