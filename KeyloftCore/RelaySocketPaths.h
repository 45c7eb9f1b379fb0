#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KeyloftCore {

/// The possible paths of the relay socket.
struct RelaySocketPaths {
    RelaySocketPaths() = delete;

    /// The application group that the product's processes share.
    static constexpr std::string_view appGroupID = "group.velde.orvane.keyloft";
    /// The bundle identifier of the relay extension, whose container holds the second candidate.
    static constexpr std::string_view appexBundleID = "velde.orvane.keyloft.relay.Extension";

    /// The absolute socket paths below the user's home directory, in order of preference: in the group's
    /// container, then in the extension's cache directory. Creates nothing, and checks neither existence nor
    /// length. Listen on the first path whose directory can be created. Connect to the first that accepts.
    static std::vector<std::string> candidates();
};

} // namespace KeyloftCore
