#pragma once

#include "Platform/AppKit/Control.h"
#include "Platform/AppKit/macos/ViewNative.h"

namespace Platform {

/// What buttons and fields have in common.
struct ControlNative : View::Native {
    explicit ControlNative(NSControl* _Nonnull made)
        : Native(made)
        , control(made) {}

    /// Takes over what was set before the native side was made.
    void takeOver(const Control& owner);

    void applyTarget(const Control& owner);
    void applyFont(const Control& owner);
    void applyRepresentedURL(const Control& owner);

    static ControlNative& of(View::Native& native) { return static_cast<ControlNative&>(native); }

    NSControl* __strong _Nonnull const control;

private:
    /// Stands for the target; AppKit holds it weakly.
    id __strong _Nullable target_;
};

} // namespace Platform
