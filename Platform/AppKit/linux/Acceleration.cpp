#include "Platform/AppKit/linux/Acceleration.h"

#include <gtk/gtk.h>

#include <system_error>

namespace Platform {

bool hasRenderNode(const std::filesystem::path& devices) {
    // A range-based for loop would throw if reading the directory fails.
    std::error_code error;
    std::filesystem::directory_iterator entry(devices, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (entry->path().filename().string().starts_with("renderD")) {
            return true;
        }
    }
    return false;
}

void chooseAcceleration(const std::filesystem::path& devices) {
    if (hasRenderNode(devices)) {
        return;
    }
    g_setenv("GSK_RENDERER", "cairo", FALSE);
    g_setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", FALSE);
    // Disable OpenGL, which GTK loads even if it renders with cairo.
    const bool hasDisable = gtk_check_version(4, 14, 0) == nullptr;
    g_setenv(hasDisable ? "GDK_DISABLE" : "GDK_DEBUG", hasDisable ? "gl,vulkan" : "gl-disable", FALSE);
}

} // namespace Platform
