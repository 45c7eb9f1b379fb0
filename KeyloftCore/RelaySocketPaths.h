#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KeyloftCore {

/// The candidate paths of the relay socket.
struct RelaySocketPaths {
    RelaySocketPaths() = delete;

    /// The identifier of the application group, whose container holds the first candidate path.
    static constexpr std::string_view appGroupID = "group.velde.orvane.keyloft";
    /// The bundle identifier of the relay extension, whose container holds the second candidate path.
    static constexpr std::string_view appexBundleID = "velde.orvane.keyloft.relay.Extension";

    /// Returns the absolute socket paths in the user's home directory, in order of preference: in the
    /// container of the application group, then in the cache directory of the extension. Creates nothing, and
    /// checks neither the existence nor the length of the paths. Listen on the first path whose directory can
    /// be created. Connect to the first path that accepts a connection.
    static std::vector<std::string> candidates();
};

} // namespace KeyloftCore
