#pragma once

namespace Platform {

/// Picks the renderers of toolkit and engine; before either starts.
void chooseAcceleration();

} // namespace Platform
