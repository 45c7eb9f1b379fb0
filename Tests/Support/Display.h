#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

/// What a program in a display session can rely on, and ask for; every test program linked to
/// KeyloftDisplayTestMain is in one.
///
/// The session has a private X server (DISPLAY; 1600 by 1200 pixels, 24 bits) and a private session bus
/// (DBUS_SESSION_BUS_ADDRESS; nothing but the accessibility bus can be activated on it), which end with the
/// program. HOME and every XDG directory lie in a fresh temporary directory that is
/// removed at the end. The toolkit draws in software, and settings are kept in memory. Should the test
/// program crash, what the session started ends with it.
///
/// Main thread only.
namespace TestSupport {

/// Begins the session, before the program uses the toolkit. Throws std::exception where a part of it does
/// not come up.
void beginDisplaySession();

/// Starts a window manager (openbox) on the private display unless that was done before, and returns once it
/// manages windows. Without one, windows have no frame and the keyboard focus is not given to new windows.
/// Throws std::runtime_error when it does not come up.
void startWindowManager();

/// The temporary directory that holds HOME and the rest.
const std::filesystem::path& sessionDirectory();

/// The session's processes that run now, by their ids: the X server, the session bus and, once started, the
/// window manager.
std::vector<pid_t> sessionProcesses();

} // namespace TestSupport
