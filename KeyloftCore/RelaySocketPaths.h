#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KeyloftCore {

/// Where the relay socket may live.
struct RelaySocketPaths {
    RelaySocketPaths() = delete;

    /// The application group that the product's processes share.
    static constexpr std::string_view appGroupID = "group.velde.orvane.keyloft";
    /// The relay extension, whose own container is the second choice.
    static constexpr std::string_view appexBundleID = "velde.orvane.keyloft.relay.Extension";

    /// The absolute socket paths under the user's home directory, best first: the group's container, then the
    /// extension's cache directory. Nothing is created, looked for or checked, the length included. Listen on
    /// the first whose directory can be made; connect to the first that accepts.
    static std::vector<std::string> candidates();
};

} // namespace KeyloftCore
