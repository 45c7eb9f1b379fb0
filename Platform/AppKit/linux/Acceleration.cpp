#include "Platform/AppKit/linux/Acceleration.h"

#include <glib.h>

<<<<<<< HEAD
#include <filesystem>
#include <string>
=======
>>>>>>> webkit
#include <system_error>

namespace Platform {

<<<<<<< HEAD
namespace {

bool hasRenderNode() {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/dri", error)) {
        if (entry.path().filename().string().starts_with("renderD"))
=======
bool hasRenderNode(const std::filesystem::path& devices) {
    // Stepped by hand: the loop over a range throws where a step fails.
    std::error_code error;
    std::filesystem::directory_iterator entry(devices, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (entry->path().filename().string().starts_with("renderD"))
>>>>>>> webkit
            return true;
    }
    return false;
}

<<<<<<< HEAD
} // namespace

void chooseAcceleration() {
    // Without a GPU its work is done by the processor, at three times the time and 160 MiB more memory.
    if (hasRenderNode())
=======
void chooseAcceleration(const std::filesystem::path& devices) {
    if (hasRenderNode(devices))
>>>>>>> webkit
        return;
    g_setenv("GSK_RENDERER", "cairo", FALSE);
    g_setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", FALSE);
}

} // namespace Platform
