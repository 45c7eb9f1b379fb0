#pragma once

#include <adwaita.h>

namespace Platform {

/// Gives the tabs of `bar` and their close buttons accessible roles, names and states, which libadwaita
/// omits (seen with 1.2.2, not reported). Call it after setting the view of `bar`, before adding `bar` to a
/// window.
void describeTabs(AdwTabBar* bar);

} // namespace Platform
