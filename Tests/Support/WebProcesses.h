#pragma once

#include <sys/types.h>

#include <vector>

namespace TestSupport {

/// The processes in which the web engine runs pages for this one, in the order of their numbers.
std::vector<pid_t> webProcesses();

/// Removes what pages have stored in the default data store, so that WebKitGTK ends the processes that it
/// keeps for the next page of a site. Then kills those that are left. Returns false if one is left all the
/// same. Main thread only.
[[nodiscard]] bool forgetPages();

} // namespace TestSupport
