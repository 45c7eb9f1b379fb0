#pragma once

#include "Platform/AppKit/Action.h"

/// Actions that the browser defines for its controls and menu items.
namespace Keyloft::BrowserAction {

inline constexpr Platform::Action newTab("newTab");
inline constexpr Platform::Action focusAddressBar("focusAddressBar");
inline constexpr Platform::Action navigateFromAddressField("navigateFromAddressField");
inline constexpr Platform::Action searchFromSearchField("searchFromSearchField");
inline constexpr Platform::Action reload("reload");
inline constexpr Platform::Action stopLoading("stopLoading");
inline constexpr Platform::Action goBack("goBack");
inline constexpr Platform::Action goForward("goForward");
inline constexpr Platform::Action toggleBookmark("toggleBookmark");
inline constexpr Platform::Action openBookmark("openBookmark");

} // namespace Keyloft::BrowserAction
