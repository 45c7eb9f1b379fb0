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

/// Functions that observe and operate the application's windows as a user does, through the native toolkit
/// instead of Platform's objects. Functions that wait run the main loop, and fail the test if their condition
/// does not become true in time. Main thread only.
namespace TestSupport {

/// Waits until all previous changes to the window have been laid out and drawn.
void waitForLayout(Platform::Window& window);

/// Frame of the window's content, which is below the menu bar and the tab strip, in the native window's
/// coordinates.
Platform::Rect contentFrame(Platform::Window& window);

/// Size of the native window that contains `window` and possibly other tabs. Excludes the window manager's
/// frame.
Platform::Size nativeWindowSize(Platform::Window& window);

/// Bounds of the native view, in the coordinates of its window's content.
Platform::Rect boundsInContent(Platform::View& view);

/// Returns true if the view is visible on the screen.
bool isShown(Platform::View& view);

/// Resizes the native window so that its content has this size or, if the size is too small, the minimum
/// size. Returns false if the content gets a different size.
[[nodiscard]] bool resizeContent(Platform::Window& window, Platform::Size size);

/// The minimum size of the window's content.
Platform::Size leastContentSize(Platform::Window& window);

/// Deletes the saved window frames, so that the next window opens as on the first launch.
void forgetWindowFrames();

/// The title of the native window that contains this window.
std::string nativeTitle(Platform::Window& window);

bool shareNativeWindow(Platform::Window& one, Platform::Window& other);
/// The titles in the tab strip, from left to right.
std::vector<std::string> tabTitles(Platform::Window& window);
bool isTabStripShown(Platform::Window& window);
bool isSelectedTab(Platform::Window& window);
/// Returns true if the tab is marked as needing attention.
bool needsAttention(Platform::Window& window);
void selectTab(Platform::Window& window);
/// Closes the tab, as its close button does.
void closeTab(Platform::Window& window);
/// Closes the native window with all its tabs, like the close button in its frame.
void closeNativeWindow(Platform::Window& window);
void clickNewTabButton(Platform::Window& window);

/// Returns true unless the window manager hints disable both the window's minimize function and its minimize
/// button.
bool frameHintsAllowMinimizing(Platform::Window& window);

/// Returns true if the native window that contains this window has the keyboard focus.
bool isActive(Platform::Window& window);

/// The title of this program's focused native window, or an empty string if no window has the focus.
std::string activeTitle();

/// Gives the native window the keyboard focus, and waits until the window is active. Starts a window manager
/// if necessary.
void activate(Platform::Window& window);

/// A native window that does not belong to a `Platform::Window`. The constructor gives it the keyboard focus.
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

/// Press a key or a key combination ("Return", "ctrl+t"), type a string, or click the center of a view. These
/// functions generate real input events, which the display delivers to the window that has the keyboard focus
/// or is under the pointer. The functions return when the events have been sent, possibly before the events
/// take effect.
void pressKey(const std::string& key);
void typeText(const std::string& text);
void click(Platform::View& view);

/// A point on the screen, in pixels from the top left corner.
struct ScreenPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

/// A point on the screen that windows of the default size do not cover.
inline constexpr ScreenPoint bareDesktop{.x = 1590, .y = 1190};

/// Points at which to click the window's tab, the tab's close button and the tab strip's new-tab button. The
/// tab strip must be shown. A close button is shown only while its tab is selected or under the pointer.
ScreenPoint tabOnScreen(Platform::Window& window);
ScreenPoint tabCloseButtonOnScreen(Platform::Window& window);
ScreenPoint newTabButtonOnScreen(Platform::Window& window);

enum class PointerButton { primary = 1, middle = 2 };

/// Moves the pointer to `point` and clicks.
void clickAt(ScreenPoint point, PointerButton button = PointerButton::primary);
/// Drags from one point to another. Moves the pointer in small steps, and pauses before the drop, as a user
/// does.
void drag(ScreenPoint from, ScreenPoint to);

struct ShownMenu {
    double width = 0;
    /// The full labels of the menu's items, without their key equivalents.
    std::vector<std::string> titles;
    /// For each item in `titles`, true if the label was truncated on the screen.
    std::vector<bool> isCut;
};

/// Opens a menu in the menu bar, closes it again, and returns the items that the menu displayed.
ShownMenu openedMenu(Platform::Window& window, const std::string& title);

/// The titles in the menu bar, from left to right.
std::vector<std::string> menuTitles(Platform::Window& window);
/// Returns true if the menu `title` of the menu bar is open and laid out.
bool isMenuOpen(Platform::Window& window, const std::string& title);
ScreenPoint menuTitleOnScreen(Platform::Window& window, const std::string& title);
/// Opens the menu with a click, and chooses the item with another click.
void chooseFromMenu(Platform::Window& window, const std::string& title, const std::string& item);

/// Sets the keyboard layout with this name, such as "de", for the lifetime of the object. The destructor sets
/// the US layout. `keycodeOfZ` is the code of the key that types "z" in the layout.
class KeyboardLayout {
public:
    KeyboardLayout(const std::string& name, unsigned keycodeOfZ);
    KeyboardLayout(const KeyboardLayout&) = delete;
    KeyboardLayout& operator=(const KeyboardLayout&) = delete;
    ~KeyboardLayout();
};

/// Presses the keys that type the item's key equivalent in the current keyboard layout.
void pressKeyEquivalent(const Platform::MenuItem& item);

/// The size of the screen, in points.
Platform::Size screenSize();

/// Returns true if the view receives keyboard input whenever its window is active and its tab is selected.
bool hasFocus(Platform::View& view);
/// Returns true if the view has the focus and its focus ring is visible.
bool showsFocus(Platform::View& view);
/// Hides the focus ring, as GTK does when the keyboard has not been used for a while.
void hideFocus(Platform::Window& window);
std::string selectedText(Platform::TextField& field);
/// The string that the native text field displays.
std::string shownText(Platform::TextField& field);

struct ShownSheet {
    /// The text labels of the sheet, starting with the heading.
    std::vector<std::string> texts;
    /// The labels of the sheet's buttons, starting with the default button.
    std::vector<std::string> buttons;

    friend bool operator==(const ShownSheet&, const ShownSheet&) = default;
};

/// Returns the sheet that is shown over the window's content, or the first sheet if several are pending.
/// Returns `std::nullopt` if there is no sheet.
std::optional<ShownSheet> shownSheet(Platform::Window& window);
void pressSheetButton(Platform::Window& window, const std::string& title);
/// Clicks the center of the button with the pointer.
void clickSheetButton(Platform::Window& window, const std::string& title);
/// Frame of a button of the sheet, in the coordinates of the window's content.
Platform::Rect sheetButtonFrame(Platform::Window& window, const std::string& title);
/// Returns true if the window's sheet receives keyboard input whenever the window is active and its tab is
/// selected.
bool hasSheetFocus(Platform::Window& window);

/// Returns a pointer that expires when the view's native object is finalized. The pointer does not keep the
/// object alive.
std::weak_ptr<void> nativeLifetime(Platform::View& view);

/// Returns true if horizontal swipes navigate back and forward in the view.
bool allowsSwipes(Platform::WebView& view);

/// Starts a script in the page, and does not wait for its completion.
void runScript(Platform::WebView& view, const std::string& script);

/// Kills the processes, which must include the view's web process, and waits until the view is notified.
/// Returns false if a process cannot be killed or the view is not notified in time.
[[nodiscard]] bool killWebProcesses(Platform::WebView& view, const std::vector<pid_t>& processes);

/// Sends the requests of the view's network session to a proxy on a loopback port. Requests to localhost and
/// requests that are already in progress are not redirected.
void redirectTraffic(Platform::WebView& view, int port);

/// For the lifetime of this object, routes requests from web views that use the default data store through a
/// proxy on a loopback port. Requests to localhost bypass the proxy. No traffic leaves the machine.
class TrafficRedirection {
public:
    explicit TrafficRedirection(int port);
    TrafficRedirection(const TrafficRedirection&) = delete;
    TrafficRedirection& operator=(const TrafficRedirection&) = delete;
    ~TrafficRedirection();
};

} // namespace TestSupport
