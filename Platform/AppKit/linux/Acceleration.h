#pragma once

#include <filesystem>

namespace Platform {

/// Returns true if there is a render node, a device with which programs can use the graphics card. `devices`
/// is the folder of the graphics devices.
bool hasRenderNode(const std::filesystem::path& devices = "/dev/dri");

/// Chooses the renderers of GTK and WebKitGTK through environment variables. Variables that are already set
/// are kept. Call it before GTK and WebKitGTK are initialized and before any thread starts. Without a render
/// node the processor would emulate accelerated rendering, which takes three times as long and 160 MiB more
/// memory.
void chooseAcceleration(const std::filesystem::path& devices = "/dev/dri");

} // namespace Platform
