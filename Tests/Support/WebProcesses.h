#pragma once

#include <sys/types.h>

#include <vector>

namespace TestSupport {

/// The processes in which the web engine runs pages for this one, in the order of their numbers.
std::vector<pid_t> webProcesses();

/// Removes what pages have stored in the default data store and waits until no web process is left, including
/// those that WebKitGTK keeps for the next page of a site. Returns false if one is left. Main thread only.
[[nodiscard]] bool forgetPages();

} // namespace TestSupport
