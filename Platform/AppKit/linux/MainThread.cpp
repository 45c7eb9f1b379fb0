#include "Platform/AppKit/MainThread.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace Platform {

void assertMainThread(const char* operation) {
    // Asked once of the system, for a bar of bookmarks alone asks thousands of times.
    thread_local const bool isMainThread = gettid() == getpid();
    if (isMainThread) {
        return;
    }
    std::fprintf(stderr, "Keyloft: %s was called off the main thread\n", operation);
    std::abort();
}

} // namespace Platform
