#pragma once

namespace Platform {

/// Has `turn` called before each turn of `RunLoop::run`: for what does not come to a plain run loop by
/// itself. There is one. Main thread only.
void setBeforeTurn(void (*turn)() noexcept);

} // namespace Platform
