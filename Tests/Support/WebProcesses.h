#pragma once

#include <sys/types.h>

#include <vector>

namespace TestSupport {

/// Process IDs of the WebKitGTK web processes that belong to this process, in ascending order.
std::vector<pid_t> webProcesses();

/// Clears the default data store, so that WebKitGTK terminates the processes that it caches for the next page
/// of a site. Then kills the remaining web processes. Returns false if any process survives. Main thread
/// only.
[[nodiscard]] bool forgetPages();

} // namespace TestSupport
