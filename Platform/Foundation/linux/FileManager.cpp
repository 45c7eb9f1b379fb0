#include "Platform/Foundation/FileManager.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace Platform {

namespace {

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

URL FileManager::applicationSupportDirectory() const {
    return homeDirectory().appendingPathComponent("Library/Application Support", true);
}

int FileManager::flush(int descriptor) { return fsync(descriptor); }

} // namespace Platform
