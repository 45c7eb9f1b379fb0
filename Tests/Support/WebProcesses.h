#pragma once

#include <sys/types.h>

#include <vector>

namespace TestSupport {

/// The ids of WebKitGTK's web processes that belong to this process, in ascending order.
std::vector<pid_t> webProcesses();

/// Clears the default data store, so that WebKitGTK ends the processes that it keeps for the next page of a
/// site. Then kills the web processes that are left. Returns false if one is left even then. Main thread
/// only.
[[nodiscard]] bool forgetPages();

} // namespace TestSupport
