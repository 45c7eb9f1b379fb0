#include "Platform/Foundation/FileSystem.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace Platform::FileSystem {

const int searchOnly = O_SEARCH;

/// fsync alone leaves the bytes in the drive's own memory. Not every file system can do more.
int flush(int descriptor) {
    const int flushed = fcntl(descriptor, F_FULLFSYNC);
    return flushed != 0 && errno != EINTR ? fsync(descriptor) : flushed;
}

} // namespace Platform::FileSystem
