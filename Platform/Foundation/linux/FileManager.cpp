#include "Platform/Foundation/FileManager.h"

#include "Platform/Foundation/FileTask.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>

namespace Platform {

namespace {

bool isDirectory(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

constexpr mode_t directoryMode = 0777;

/// `mkdir`, after which permissions that were asked for hold whatever the process's mask takes away.
int makeDirectory(const std::string& path, std::optional<unsigned> posixPermissions) {
    if (mkdir(path.c_str(), posixPermissions.value_or(directoryMode)) != 0) {
        return -1;
    }
    return posixPermissions ? chmod(path.c_str(), *posixPermissions) : 0;
}

/// The path that `path` is an entry of; empty where it names none.
std::string_view parentOf(std::string_view path) {
    const std::size_t end = path.find_last_not_of('/');
    const std::size_t slash = end == std::string_view::npos ? end : path.rfind('/', end);
    return slash == std::string_view::npos ? std::string_view()
                                           : path.substr(0, std::max<std::size_t>(slash, 1));
}

void createMissingDirectories(const FileTask& task, const std::string& path,
                              std::optional<unsigned> posixPermissions) {
    // What exists is left alone, so that a directory in which nothing can be created is no obstacle on the
    // way.
    if (isDirectory(path) || makeDirectory(path, posixPermissions) == 0) {
        return;
    }
    if (const std::string parent(parentOf(path)); errno == ENOENT && !parent.empty()) {
        createMissingDirectories(task, parent, posixPermissions);
        if (makeDirectory(path, posixPermissions) == 0) {
            return;
        }
    }
    // Somebody else may have created it meanwhile.
    if (const int systemError = errno; !isDirectory(path)) {
        throw task.failure(systemError);
    }
}

std::string homePath() {
    if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') {
        return home;
    }
    std::array<char, 16384> buffer = {};
    passwd entry = {};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr &&
        found->pw_dir != nullptr && found->pw_dir[0] == '/') {
        return found->pw_dir;
    }
    return "/";
}

} // namespace

URL FileManager::homeDirectory() const { return URL::fromFilePath(homePath(), true); }

std::vector<URL> FileManager::applicationSupportDirectories() const {
    return {homeDirectory().appendingPathComponent("Library/Application Support", true)};
}

void FileManager::createDirectory(const std::string& path, bool withIntermediateDirectories,
                                  std::optional<unsigned> posixPermissions) const {
    const FileTask task = {.subject = "directory", .verb = "created", .path = path};
    task.requireUsablePath();
    if (withIntermediateDirectories) {
        createMissingDirectories(task, path, posixPermissions);
    } else if (makeDirectory(path, posixPermissions) != 0) {
        throw task.failure(errno);
    }
}

} // namespace Platform
