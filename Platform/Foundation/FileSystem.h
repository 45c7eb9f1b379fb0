#pragma once

/// Where systems differ about files. For FileManager's own sources.
namespace Platform::FileSystem {

/// The access with which `open` takes a directory that may be searched but not listed.
extern const int searchOnly;

/// Brings what was written to the disk itself. One system call: -1 and `errno` where it fails, EINTR
/// included.
int flush(int descriptor);

} // namespace Platform::FileSystem
