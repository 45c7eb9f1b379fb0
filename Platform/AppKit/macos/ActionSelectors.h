#pragma once

#include "Platform/AppKit/Action.h"

#import <objc/objc.h>

#include <optional>
#include <span>

namespace Platform {

/// The selector that carries an action's meaning.
SEL _Nonnull selectorFor(Action action);

/// The action that a selector carries, or nothing.
std::optional<Action> actionFor(SEL _Nullable selector);

struct ActionSelector {
    Action action;
    SEL _Nonnull selector;
};

/// The one table of both.
std::span<const ActionSelector> actionSelectors();

} // namespace Platform
