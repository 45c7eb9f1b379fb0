#include "Platform/AppKit/MainThread.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace Platform {

void assertMainThread(const char* operation) {
    if (gettid() == getpid())
        return;
    std::fprintf(stderr, "Keyloft: %s was called off the main thread\n", operation);
    std::abort();
}

} // namespace Platform
