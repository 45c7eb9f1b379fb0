#pragma once

#include <filesystem>

namespace Platform {

/// Returns true if `devices`, the directory of graphics devices, contains a render node of a graphics card.
bool hasRenderNode(const std::filesystem::path& devices = "/dev/dri");

/// Disables accelerated rendering in GTK and WebKitGTK without a render node, because emulation by the CPU
/// takes three times as long and uses 160 MiB more memory. Sets environment variables, unless they are
/// already set. Call it before initializing GTK and before starting any thread.
void chooseAcceleration(const std::filesystem::path& devices = "/dev/dri");

} // namespace Platform
