#include "Platform/AppKit/MainThread.h"

#include "Platform/Foundation/FatalError.h"

#include <unistd.h>

#include <string>

namespace Platform {

void assertMainThread(const char* operation) {
    // Cache the result, because creating a bookmarks bar calls this function thousands of times.
    thread_local const bool isMainThread = gettid() == getpid();
    if (!isMainThread) {
        fatalError(std::string(operation) + " was called off the main thread");
    }
}

} // namespace Platform
