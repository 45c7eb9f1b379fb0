#include "KeyloftCore/RelaySocketPaths.h"

#include "Platform/Foundation/FileManager.h"

namespace KeyloftCore {

std::vector<std::string> RelaySocketPaths::candidates() {
    const auto home = Platform::FileManager::defaultManager().homeDirectory();
    const auto path = [&](std::string_view relativePath) {
        return home.appendingPathComponent(relativePath, false).filePath();
    };
    return {
        path("Library/Group Containers/" + std::string(appGroupID) + "/relay.sock"),
        path("Library/Containers/" + std::string(appexBundleID) + "/Data/Library/Caches/relay.sock"),
    };
}

} // namespace KeyloftCore
