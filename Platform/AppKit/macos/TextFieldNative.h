#pragma once

#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/macos/ControlNative.h"

@class KeyloftTextFieldDelegate;

namespace Platform {

/// Handles the editing events that AppKit reports for a text field.
struct TextFieldEvents {
    struct Native final : ControlNative {
        explicit Native(NSTextField* _Nonnull made)
            : ControlNative(made)
            , field(made) {}

        NSTextField* __strong _Nonnull const field;
        /// A strong reference, because AppKit holds the delegate weakly.
        KeyloftTextFieldDelegate* __strong _Nullable delegate;
    };

    /// Creates the native side of `field`. `made` is one of AppKit's single-line text fields.
    static std::unique_ptr<View::Native> make(const TextField& field, NSTextField* _Nonnull made);

    static void didBegin(id _Nullable field) noexcept;
    static void didChange(NSTextField* _Nonnull field) noexcept;
    static void didEnd(id _Nullable field, NSTextMovement movement) noexcept;
    /// Handles Escape. Returns false if the field has no TextField, so that AppKit handles the key.
    static bool cancelled(NSTextField* _Nonnull field) noexcept;

    static NSTextField* _Nonnull fieldOf(View::Native& native) { return static_cast<Native&>(native).field; }
};

} // namespace Platform
