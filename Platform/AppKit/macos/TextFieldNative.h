#pragma once

#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/macos/ControlNative.h"

@class KeyloftTextFieldDelegate;

namespace Platform {

/// Handles the events of a field's edit that AppKit reports.
struct TextFieldEvents {
    struct Native final : ControlNative {
        explicit Native(NSTextField* _Nonnull made)
            : ControlNative(made)
            , field(made) {}

        NSTextField* __strong _Nonnull const field;
        /// AppKit holds it weakly.
        KeyloftTextFieldDelegate* __strong _Nullable delegate;
    };

    /// Creates the native side of `field` with `made`, one of AppKit's single-line fields.
    static std::unique_ptr<View::Native> make(const TextField& field, NSTextField* _Nonnull made);

    static void didBegin(id _Nullable field) noexcept;
    static void didChange(NSTextField* _Nonnull field) noexcept;
    static void didEnd(id _Nullable field, NSTextMovement movement) noexcept;
    /// Handles Escape. Returns false if the field is not ours, so that AppKit handles it.
    static bool cancelled(NSTextField* _Nonnull field) noexcept;

    static NSTextField* _Nonnull fieldOf(View::Native& native) { return static_cast<Native&>(native).field; }
};

} // namespace Platform
