#include "KeyloftCore/RelaySocketPaths.h"

#include "Platform/Foundation/FileManager.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using KeyloftCore::RelaySocketPaths;

TEST(RelaySocketPaths, areTheTwoKnownPlacesUnderTheHomeDirectory) {
    const auto home = Platform::FileManager::defaultManager().homeDirectory().filePath();
    EXPECT_EQ(
        RelaySocketPaths::candidates(),
        (std::vector<std::string>{
            home + "/Library/Group Containers/group.velde.orvane.keyloft/relay.sock",
            home +
                "/Library/Containers/velde.orvane.keyloft.relay.Extension/Data/Library/Caches/relay.sock"}));
}

TEST(RelaySocketPaths, theGroupsDirectoryBearsTheGroupsName) {
    EXPECT_EQ(RelaySocketPaths::appGroupID, "group.velde.orvane.keyloft");
    EXPECT_EQ(RelaySocketPaths::appexBundleID, "velde.orvane.keyloft.relay.Extension");
    const auto candidates = RelaySocketPaths::candidates();
    EXPECT_EQ(std::filesystem::path(candidates[0]).parent_path().filename(), RelaySocketPaths::appGroupID);
}

} // namespace
