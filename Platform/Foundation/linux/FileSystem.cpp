#include "Platform/Foundation/FileSystem.h"

#include <fcntl.h>
#include <unistd.h>

namespace Platform::FileSystem {

const int searchOnly = O_PATH;

int flush(int descriptor) { return fsync(descriptor); }

} // namespace Platform::FileSystem
