#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

/// The display session of a test program. Every test program linked to KeyloftDisplayTestMain runs in one.
///
/// The session has a private X server (DISPLAY; 1600 by 1200 pixels, 24 bits) and a private session bus
/// (DBUS_SESSION_BUS_ADDRESS; only the accessibility bus can be activated on it), which end with the program.
/// HOME and all XDG directories are in a new temporary directory, which is removed at the end. GTK draws in
/// software, and settings are kept in memory. If the test program crashes, the processes of the session end
/// as well.
///
/// Main thread only.
namespace TestSupport {

/// Begins the session. To be called before the program uses GTK. Throws std::exception if a part of the
/// session does not start.
void beginDisplaySession();

/// Starts a window manager (openbox) on the private display unless it runs already, and returns once it
/// manages windows. Without a window manager, windows have no frame and new windows do not get the keyboard
/// focus. Throws std::runtime_error if it does not start.
void startWindowManager();

/// The temporary directory that contains HOME and the XDG directories.
const std::filesystem::path& sessionDirectory();

/// The ids of the session's processes that are running: the X server, the session bus and, once started, the
/// window manager.
std::vector<pid_t> sessionProcesses();

} // namespace TestSupport
