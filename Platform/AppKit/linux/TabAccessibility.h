#pragma once

#include <adwaita.h>

namespace Platform {

/// Gives the tabs of `bar` and their close buttons accessible roles, names and states, which libadwaita
/// omits (seen with 1.2.2, not reported). Call it after the view of `bar` is set and before `bar` is added to
/// a window.
void describeTabs(AdwTabBar* bar);

} // namespace Platform
