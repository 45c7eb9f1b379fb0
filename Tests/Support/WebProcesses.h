#pragma once

#include <sys/types.h>

#include <vector>

namespace TestSupport {

/// The processes in which the web engine runs pages for this one, in the order of their numbers.
std::vector<pid_t> webProcesses();

} // namespace TestSupport
