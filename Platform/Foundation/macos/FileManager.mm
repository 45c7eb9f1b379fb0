#include "Platform/Foundation/FileManager.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/macos/Conversions.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace Platform {

namespace {

/// The path of an NSURL may lack the trailing slash of a directory.
URL directoryURL(NSURL* url) { return URL::fromFilePath(fromNSString(url.path), true); }

} // namespace

URL FileManager::homeDirectory() const {
    return directoryURL(NSFileManager.defaultManager.homeDirectoryForCurrentUser);
}

URL FileManager::applicationSupportDirectory() const {
    NSURL* const url = [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                            inDomains:NSUserDomainMask]
                           .firstObject;
    if (url == nil) {
        fatalError("macOS reports no application support directory");
    }
    return directoryURL(url);
}

/// Uses fsync, which leaves the data in the drive's cache, only if the file system rejects F_FULLFSYNC.
int FileManager::flush(int descriptor) {
    const int flushed = fcntl(descriptor, F_FULLFSYNC);
    return flushed != 0 && errno != EINTR ? fsync(descriptor) : flushed;
}

} // namespace Platform
