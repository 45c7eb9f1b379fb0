#include "Platform/AppKit/MainThread.h"

#include "Platform/Foundation/FatalError.h"

#import <Foundation/Foundation.h>

#include <string>

namespace Platform {

void assertMainThread(const char* operation) {
    if (!NSThread.isMainThread) {
        fatalError(std::string(operation) + " was called off the main thread");
    }
}

} // namespace Platform
