#pragma once

#include "Platform/AppKit/Action.h"

#import <objc/objc.h>

#include <optional>

namespace Platform {

/// The selector that carries an action's meaning.
SEL _Nonnull selectorFor(Action action);

/// The action of a selector that takes one argument, or nothing. It names the selector's own text, which
/// lives as long as the process.
std::optional<Action> actionFor(SEL _Nullable selector);

} // namespace Platform
