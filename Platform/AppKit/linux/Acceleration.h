#pragma once

#include <filesystem>

namespace Platform {

/// Returns true if `devices`, the folder of the graphics devices, contains a render node, through which
/// programs can use the graphics card.
bool hasRenderNode(const std::filesystem::path& devices = "/dev/dri");

/// Disables accelerated rendering in GTK and WebKitGTK if there is no render node. The processor would
/// emulate it, which takes three times as long and uses 160 MiB more memory. Sets environment variables, but
/// keeps variables that are already set. Call it before GTK and WebKitGTK are initialized and before any
/// thread is started.
void chooseAcceleration(const std::filesystem::path& devices = "/dev/dri");

} // namespace Platform
