#pragma once

#include <filesystem>

namespace Platform {

/// Whether the system has a device that programs may render with. `devices` is the folder of the graphics
/// devices.
bool hasRenderNode(const std::filesystem::path& devices = "/dev/dri");

/// Picks the renderers of toolkit and engine; before either starts, and before any thread. Without a render
/// node the accelerated paths would be emulated by the processor, at three times the time and 160 MiB more
/// memory. Variables of the environment that are set already stay as they are.
void chooseAcceleration(const std::filesystem::path& devices = "/dev/dri");

} // namespace Platform
