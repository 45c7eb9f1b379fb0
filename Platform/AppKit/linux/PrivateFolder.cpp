#include "Platform/AppKit/linux/PrivateFolder.h"

#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/Foundation/DiagnosticLog.h"

#include <glib.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Platform {

std::optional<std::string> privateFolder(const char* userDirectory) {
    const std::filesystem::path folder = std::filesystem::path(userDirectory) / programInfo().identifier;
    std::error_code error;
    if (g_mkdir_with_parents(folder.c_str(), 0700) != 0) {
        error = std::error_code(errno, std::generic_category());
    } else {
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
    }
    if (error) {
        diagnosticLog("The folder \"" + folder.string() + "\" cannot be used: " + error.message() +
                      ". Nothing is saved there.");
        return std::nullopt;
    }
    return folder.string();
}

} // namespace Platform
