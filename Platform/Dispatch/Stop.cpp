#include "Platform/Dispatch/Stop.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace Platform {

void stopProcess(std::string_view message) noexcept {
    // One call for the whole line, so that other threads' output stays out of it.
    std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
    std::abort();
}

} // namespace Platform
