#pragma once

#include "Platform/AppKit/Geometry.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/View.h"
#include "Platform/AppKit/Window.h"
#include "Platform/WebKit/WebView.h"

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Observes and operates the application's windows as a user does, through the native toolkit instead of
/// Platform's objects. Functions that wait run the main loop. A condition that never comes about is a test
/// failure. Main thread only.
namespace TestSupport {

/// Waits until all changes so far are laid out and drawn.
void waitForLayout(Platform::Window& window);

/// The window's content, below menu bar and tab strip, in the native window's coordinates.
Platform::Rect contentFrame(Platform::Window& window);

/// The size of the native window that contains the window, alone or as a tab. Excludes the frame.
Platform::Size nativeWindowSize(Platform::Window& window);

/// The bounds of the native view, relative to its window's content.
Platform::Rect boundsInContent(Platform::View& view);

/// Returns true if the view is on the screen.
bool isShown(Platform::View& view);

/// Resizes the native window so that the content gets this size, as a user does by dragging a corner. Returns
/// false if the content does not get it.
[[nodiscard]] bool resizeContent(Platform::Window& window, Platform::Size size);

/// The minimum size of the content.
Platform::Size leastContentSize(Platform::Window& window);

/// Deletes the saved window frames, so that the next window opens as at a first start.
void forgetWindowFrames();

/// The title of the native window.
std::string nativeTitle(Platform::Window& window);

bool shareNativeWindow(Platform::Window& one, Platform::Window& other);
/// The titles in the tab strip, from left to right.
std::vector<std::string> tabTitles(Platform::Window& window);
bool isTabStripShown(Platform::Window& window);
bool isSelectedTab(Platform::Window& window);
/// Returns true if the tab is marked as needing attention.
bool needsAttention(Platform::Window& window);
void selectTab(Platform::Window& window);
/// Closes the tab as the button on it does.
void closeTab(Platform::Window& window);
/// Closes the native window with all its tabs, as the button of its frame does.
void closeNativeWindow(Platform::Window& window);
void clickNewTabButton(Platform::Window& window);

/// Returns false if the window's hints ask the window manager for a frame without minimising.
bool frameHintsAllowMinimizing(Platform::Window& window);

/// Returns true if the native window that contains this window has the keyboard focus.
bool isActive(Platform::Window& window);

/// The title of this program's native window that has the keyboard focus, or an empty text.
std::string activeTitle();

/// Starts a window manager if necessary, and waits until the window has the keyboard focus.
void activate(Platform::Window& window);

/// A native window that does not belong to the application's windows and takes the keyboard focus.
class OtherWindow {
public:
    OtherWindow();
    OtherWindow(const OtherWindow&) = delete;
    OtherWindow& operator=(const OtherWindow&) = delete;
    ~OtherWindow();

private:
    struct Native;
    std::unique_ptr<Native> native_;
};

/// Presses keys ("ctrl+t", "Return"), types a text or clicks in the middle of a view. These are real events
/// of the display: they go to the window that has the keyboard focus or is under the pointer. Returns once
/// they are sent, not once they take effect.
void pressKey(const std::string& key);
void typeText(const std::string& text);
void click(Platform::View& view);

/// A point of the screen.
struct ScreenPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

/// A point of the screen that no window of the usual size covers.
inline constexpr ScreenPoint bareDesktop{.x = 1590, .y = 1190};

/// The points to click for the window's tab, for the tab's close button, and for the strip's new-tab button.
/// The strip must be shown. A close button is shown only while its tab is selected or under the pointer.
ScreenPoint tabOnScreen(Platform::Window& window);
ScreenPoint tabCloseButtonOnScreen(Platform::Window& window);
ScreenPoint newTabButtonOnScreen(Platform::Window& window);

enum class PointerButton { primary = 1, middle = 2 };

/// Moves the pointer there and clicks.
void clickAt(ScreenPoint point, PointerButton button = PointerButton::primary);
/// Drags from one point to the other, with the pauses and steps of a user.
void drag(ScreenPoint from, ScreenPoint to);

struct ShownMenu {
    double width = 0;
    /// The complete labels of the items, without their key equivalents.
    std::vector<std::string> titles;
    /// For each item, true if the label is drawn truncated.
    std::vector<bool> isCut;
};

/// Opens a menu of the menu bar, closes it, and returns what it showed.
ShownMenu openedMenu(Platform::Window& window, const std::string& title);

/// The titles in the menu bar, from left to right.
std::vector<std::string> menuTitles(Platform::Window& window);
/// Returns true if the menu of the menu bar is open and laid out.
bool isMenuOpen(Platform::Window& window, const std::string& title);
ScreenPoint menuTitleOnScreen(Platform::Window& window, const std::string& title);
/// Opens the menu and chooses the item, both with clicks.
void chooseFromMenu(Platform::Window& window, const std::string& title, const std::string& item);

/// Sets the keyboard layout of the given name ("de") while this object lives, and then the US layout.
/// `keycodeOfZ` is the code of the key that types "z" in the layout.
class KeyboardLayout {
public:
    KeyboardLayout(const std::string& name, unsigned keycodeOfZ);
    KeyboardLayout(const KeyboardLayout&) = delete;
    KeyboardLayout& operator=(const KeyboardLayout&) = delete;
    ~KeyboardLayout();
};

/// Presses the keys that type the item's key equivalent in the current keyboard layout.
void pressKeyEquivalent(const Platform::MenuItem& item);

/// The size of the screen.
Platform::Size screenSize();

/// Returns true if the view gets keyboard input whenever its window is active and its tab is selected.
bool hasFocus(Platform::View& view);
/// Returns true if the view has the focus and shows it.
bool showsFocus(Platform::View& view);
/// Hides the focus, as the toolkit does when the keyboard has not been used for a while.
void hideFocus(Platform::Window& window);
std::string selectedText(Platform::TextField& field);
/// The text that the field shows.
std::string shownText(Platform::TextField& field);

struct ShownSheet {
    /// Heading first.
    std::vector<std::string> texts;
    /// The default button first.
    std::vector<std::string> buttons;

    friend bool operator==(const ShownSheet&, const ShownSheet&) = default;
};

/// The sheet over the window's content, or the first if several wait. Returns nothing if there is no sheet.
std::optional<ShownSheet> shownSheet(Platform::Window& window);
void pressSheetButton(Platform::Window& window, const std::string& title);
/// Clicks in the middle of the button as it is shown on the screen.
void clickSheetButton(Platform::Window& window, const std::string& title);
/// The frame of the sheet's button, relative to the window's content.
Platform::Rect sheetButtonFrame(Platform::Window& window, const std::string& title);
/// Returns true if the window's sheet gets keyboard input whenever the window is active and its tab is
/// selected.
bool hasSheetFocus(Platform::Window& window);

/// A pointer that expires when the native object of the view is finalized. Does not keep that object alive.
std::weak_ptr<void> nativeLifetime(Platform::View& view);

/// Returns true if sideways swipes go back and forward in the view.
bool allowsSwipes(Platform::WebView& view);

/// Runs a script in the page, without waiting for it.
void runScript(Platform::WebView& view, const std::string& script);

/// Kills the processes, which must include the view's web process, and waits until the view is notified.
[[nodiscard]] bool killWebProcesses(Platform::WebView& view, const std::vector<pid_t>& processes);

/// Sends requests of the view's network session to a proxy at a loopback port, except requests to this host
/// and those that have already begun.
void redirectTraffic(Platform::WebView& view, int port);

/// While it exists, requests of web views with the default data store go to a proxy at a loopback port,
/// except requests to this host. Nothing leaves the machine.
class TrafficRedirection {
public:
    explicit TrafficRedirection(int port);
    TrafficRedirection(const TrafficRedirection&) = delete;
    TrafficRedirection& operator=(const TrafficRedirection&) = delete;
    ~TrafficRedirection();
};

} // namespace TestSupport
