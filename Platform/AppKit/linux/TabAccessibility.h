#pragma once

#include <adwaita.h>

namespace Platform {

/// Gives the tabs of `bar` and their close buttons accessible roles, names and states, which libadwaita
/// leaves out (seen with 1.2.2, not reported). Call it after `bar` has got its view and before `bar` is in a
/// window.
void describeTabs(AdwTabBar* bar);

} // namespace Platform
