#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

/// The display session of a test program. Every test program linked to KeyloftDisplayTestMain runs in its own
/// session.
///
/// The session has a private X server (DISPLAY; 1600 by 1200 pixels, 24 bits) and a private session bus
/// (DBUS_SESSION_BUS_ADDRESS; only the accessibility bus can be activated on it), which terminate with the
/// program. HOME and all XDG directories are in a new temporary directory, which is removed when the program
/// exits. GTK uses software rendering, and settings are stored in memory. The processes of the session also
/// terminate if the test program crashes.
///
/// Main thread only.
namespace TestSupport {

/// Starts the session. Must be called before the program uses GTK. Throws std::exception if a part of the
/// session cannot be started.
void beginDisplaySession();

/// Starts a window manager (openbox) on the private display unless it is already running, and returns when it
/// manages windows. Without a window manager, windows have no frame and new windows do not get the keyboard
/// focus. Throws std::runtime_error if the window manager cannot be started.
void startWindowManager();

/// The temporary directory that contains HOME and the XDG directories.
const std::filesystem::path& sessionDirectory();

/// Process IDs of the session: the X server, the session bus and, if it has been started, the window manager.
std::vector<pid_t> sessionProcesses();

} // namespace TestSupport
