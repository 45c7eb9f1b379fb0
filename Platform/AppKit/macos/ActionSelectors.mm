#include "Platform/AppKit/macos/ActionSelectors.h"

#import <objc/runtime.h>

#include <string>

namespace Platform {

SEL selectorFor(Action action) { return sel_registerName((std::string(action.name()) + ':').c_str()); }

std::optional<Action> actionFor(SEL selector) {
    const std::string_view name = selector != nullptr ? sel_getName(static_cast<SEL _Nonnull>(selector)) : "";
    if (!name.ends_with(':') || name.find(':') + 1 < name.size()) {
        return std::nullopt;
    }
    return Action(name.substr(0, name.size() - 1));
}

} // namespace Platform
