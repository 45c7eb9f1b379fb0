#include "Platform/AppKit/linux/SavedFrames.h"

#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/AppKit/linux/PrivateFolder.h"
#include "Platform/Foundation/DiagnosticLog.h"
#include "Platform/Foundation/FileManager.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

constexpr const char* fileName = "window-frames";
/// The maximum size of the file, in bytes. A larger file was not written by this class and is ignored.
constexpr std::uintmax_t longestFile = std::uintmax_t{64} * 1024;
/// The delay between the last change and the write, in seconds. Resizing changes the frame repeatedly.
constexpr Timer::Interval quietTime = 1;

constexpr const char* widthKey = "width";
constexpr const char* heightKey = "height";
constexpr const char* maximizedKey = "maximized";

} // namespace

SavedFrames::SavedFrames(std::string stateDirectory)
    : stateDirectory_(std::move(stateDirectory))
    , frames_(g_key_file_new()) {
    read();
}

SavedFrames::~SavedFrames() { save(); }

void SavedFrames::read() {
    const auto file = std::filesystem::path(stateDirectory_) / programInfo().identifier / fileName;
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    if (error || size > longestFile) {
        return;
    }
    std::string text;
    try {
        text = FileManager::defaultManager().contents(file.string());
    } catch (const FileError&) {
        return;
    }
    if (!g_key_file_load_from_data(frames_.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr)) {
        frames_.reset(g_key_file_new());
    }
}

std::optional<SavedFrame> SavedFrames::frame(const std::string& name) const {
    // GLib returns 0 for a missing or malformed integer, and FALSE for a missing or malformed boolean.
    const SavedFrame frame{
        .width = g_key_file_get_integer(frames_.get(), name.c_str(), widthKey, nullptr),
        .height = g_key_file_get_integer(frames_.get(), name.c_str(), heightKey, nullptr),
        .isMaximized = g_key_file_get_boolean(frames_.get(), name.c_str(), maximizedKey, nullptr) == TRUE};
    if (frame.width <= 0 || frame.height <= 0) {
        return std::nullopt;
    }
    return frame;
}

void SavedFrames::setFrame(const std::string& name, const SavedFrame& frame) {
    if (this->frame(name) == frame) {
        return;
    }
    g_key_file_set_integer(frames_.get(), name.c_str(), widthKey, frame.width);
    g_key_file_set_integer(frames_.get(), name.c_str(), heightKey, frame.height);
    g_key_file_set_boolean(frames_.get(), name.c_str(), maximizedKey, frame.isMaximized ? TRUE : FALSE);
    isChanged_ = true;
    saving_ = Timer::scheduled(quietTime, false, [this] { save(); });
}

void SavedFrames::save() {
    saving_.reset();
    const auto folder = isChanged_ ? privateFolder(stateDirectory_.c_str()) : std::nullopt;
    if (!folder) {
        return;
    }
    gsize length = 0;
    const std::unique_ptr<char, decltype(&g_free)> text(g_key_file_to_data(frames_.get(), &length, nullptr),
                                                        &g_free);
    try {
        FileManager::defaultManager().writeAtomically(std::string_view(text.get(), length),
                                                      *folder + "/" + fileName);
        isChanged_ = false;
    } catch (const FileError& error) {
        diagnosticLog("The size of the window was not saved: " + error.localizedDescription());
    }
}

} // namespace Platform
