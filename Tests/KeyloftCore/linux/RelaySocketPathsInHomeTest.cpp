#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelaySocketClient.h"
#include "KeyloftCore/RelaySocketPaths.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using KeyloftCore::RelaySocketPaths;
using TestSupport::EnvironmentVariable;

TEST(RelaySocketPaths, areUnderTheHomeDirectoryOfTheEnvironment) {
    const EnvironmentVariable home("HOME", "/Users/a");
    EXPECT_EQ(
        RelaySocketPaths::candidates(),
        (std::vector<std::string>{"/Users/a/Library/Group Containers/group.velde.orvane.keyloft/relay.sock",
                                  "/Users/a/Library/Containers/velde.orvane.keyloft.relay.Extension/Data/"
                                  "Library/Caches/relay.sock"}));
}

TEST(RelaySocketPaths, areFileSystemPathsAndNotURLText) {
    const EnvironmentVariable home("HOME", "/Users/Zoë with 100% and #?");
    const auto candidates = RelaySocketPaths::candidates();
    EXPECT_EQ(candidates[0],
              "/Users/Zoë with 100% and #?/Library/Group Containers/group.velde.orvane.keyloft/relay.sock");
    EXPECT_TRUE(candidates[1].starts_with("/Users/Zoë with 100% and #?/Library/Containers/"));
}

TEST(RelaySocketPaths, keepTheBytesOfAHomeDirectoryThatIsNotUTF8) {
    const TestSupport::TemporaryDirectory directory;
    const EnvironmentVariable home("HOME", (directory / "caf\xE9").c_str());
    const auto candidates = RelaySocketPaths::candidates();
    EXPECT_EQ(candidates[0],
              directory / "caf\xE9/Library/Group Containers/group.velde.orvane.keyloft/relay.sock");
    EXPECT_TRUE(candidates[1].starts_with(directory / "caf\xE9/Library/Containers/"));

    KeyloftCore::RelayListener listener;
    listener.listen(candidates[0], [](const std::string& request,
                                      const KeyloftCore::RelayListener::Reply& reply) { reply(request); });
    const auto client = KeyloftCore::RelaySocketClient::connect(candidates[0]);
    client.writeFrame("x");
    EXPECT_EQ(client.readFrame(30), "x");
    client.close();
}

TEST(RelaySocketPaths, followTheHomeDirectoryAnewAndTouchNothing) {
    const auto missing = std::filesystem::temp_directory_path() / "no-such-home-for-the-relay";
    const EnvironmentVariable home("HOME", missing.string().c_str());
    const auto candidates = RelaySocketPaths::candidates();
    EXPECT_EQ(candidates, RelaySocketPaths::candidates());
    EXPECT_TRUE(candidates[0].starts_with(missing.string() + "/"));
    EXPECT_FALSE(std::filesystem::exists(missing));
    const EnvironmentVariable other("HOME", "/");
    EXPECT_EQ(RelaySocketPaths::candidates()[0],
              "/Library/Group Containers/group.velde.orvane.keyloft/relay.sock");
}

TEST(RelaySocketPaths, aPathTooLongForASocketIsStillReturned) {
    const EnvironmentVariable home("HOME", ("/" + std::string(300, 'h')).c_str());
    for (const auto& path : RelaySocketPaths::candidates()) {
        EXPECT_GT(path.size(), 300U);
    }
}

} // namespace
