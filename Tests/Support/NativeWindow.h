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

/// What a person sees of the application's windows and does with them, asked of the toolkit itself and not of
/// Platform's objects. Everything runs the main loop where it has to wait; what the toolkit never does is a
/// test failure. Main thread only.
namespace TestSupport {

/// Waits until all that was changed so far is laid out and drawn.
void waitForLayout(Platform::Window& window);

/// The window's content, below menu bar and tab strip, in the native window's coordinates.
Platform::Rect contentFrame(Platform::Window& window);

/// The native window that the window is, or is a tab of, without its frame.
Platform::Size nativeWindowSize(Platform::Window& window);

/// Where the toolkit placed the view, relative to its window's content.
Platform::Rect boundsInContent(Platform::View& view);

/// Whether the view is on the screen.
bool isShown(Platform::View& view);

/// Gives the native window the size at which the content has the given one, as the user's dragging of a
/// corner does. False when it does not get it.
[[nodiscard]] bool resizeContent(Platform::Window& window, Platform::Size size);

/// The least size that the toolkit lets the content have.
Platform::Size leastContentSize(Platform::Window& window);

/// Lets the application forget the frames that windows kept, so that the next one opens as at a first start.
void forgetWindowFrames();

/// What the native window's title bar says.
std::string nativeTitle(Platform::Window& window);

bool shareNativeWindow(Platform::Window& one, Platform::Window& other);
/// The titles in the tab strip, from left to right.
std::vector<std::string> tabTitles(Platform::Window& window);
bool isTabStripShown(Platform::Window& window);
bool isSelectedTab(Platform::Window& window);
/// Whether the tab is marked as one that wants to be looked at.
bool needsAttention(Platform::Window& window);
void selectTab(Platform::Window& window);
/// Closes the tab as the button on it does.
void closeTab(Platform::Window& window);
/// Closes the native window with all its tabs, as the button of its frame does.
void closeNativeWindow(Platform::Window& window);
void clickNewTabButton(Platform::Window& window);

/// Returns false if the window's hints ask the window manager for a frame without minimising.
bool frameHintsAllowMinimizing(Platform::Window& window);

/// Whether the keyboard goes to this window's native one.
bool isActive(Platform::Window& window);

/// The title of this program's native window that has the keyboard focus, or an empty text.
std::string activeTitle();

/// Starts a window manager if need be, and waits until the keyboard goes to the window.
void activate(Platform::Window& window);

/// A native window that has nothing to do with the application's and takes the keyboard.
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

/// Presses keys ("ctrl+t", "Return"), types a text or clicks in the middle of a view: real events from the
/// display, for whoever has the keyboard or stands there. Returns once they are sent, not once they took
/// effect.
void pressKey(const std::string& key);
void typeText(const std::string& text);
void click(Platform::View& view);

/// A point of the screen.
struct ScreenPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

/// A place of the screen that no window of the usual size covers.
inline constexpr ScreenPoint bareDesktop{.x = 1590, .y = 1190};

/// Where the pointer takes hold of the window's tab, of the button on it, of the strip's new-tab button. The
/// strip must be shown; a tab's button is once the tab is selected or the pointer over it.
ScreenPoint tabOnScreen(Platform::Window& window);
ScreenPoint tabCloseButtonOnScreen(Platform::Window& window);
ScreenPoint newTabButtonOnScreen(Platform::Window& window);

enum class PointerButton { primary = 1, middle = 2 };

/// Moves the pointer there and clicks.
void clickAt(ScreenPoint point, PointerButton button = PointerButton::primary);
/// Takes hold at one place and lets go at the other, with the pauses and the steps of a hand.
void drag(ScreenPoint from, ScreenPoint to);

struct ShownMenu {
    double width = 0;
    /// What the items say in whole, without their keys.
    std::vector<std::string> titles;
    /// Whether a title is cut where it is drawn.
    std::vector<bool> isCut;
};

/// Opens a menu of the menu bar, closes it, and returns what was to be seen meanwhile.
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

/// Whether the keyboard goes to the view while its window is active and its tab selected.
bool hasFocus(Platform::View& view);
/// Whether it is seen on the view that it has the focus.
bool showsFocus(Platform::View& view);
/// As it is when the keyboard has not been used for a while.
void hideFocus(Platform::Window& window);
std::string selectedText(Platform::TextField& field);
/// What the field shows.
std::string shownText(Platform::TextField& field);

struct ShownSheet {
    /// Heading first.
    std::vector<std::string> texts;
    /// The default button first.
    std::vector<std::string> buttons;

    friend bool operator==(const ShownSheet&, const ShownSheet&) = default;
};

/// The sheet over the window's content, the first if several wait; nothing when there is none.
std::optional<ShownSheet> shownSheet(Platform::Window& window);
void pressSheetButton(Platform::Window& window, const std::string& title);
/// Clicks where the button is to be seen, in the middle of it.
void clickSheetButton(Platform::Window& window, const std::string& title);
/// Where the button of the sheet is, relative to the window's content.
Platform::Rect sheetButtonFrame(Platform::Window& window, const std::string& title);
/// Whether the keyboard goes to the window's sheet while the window is active and its tab selected.
bool hasSheetFocus(Platform::Window& window);

/// Lives as long as the toolkit's own object of the view, and keeps nothing alive.
std::weak_ptr<void> nativeLifetime(Platform::View& view);

/// Returns true if sideways swipes go back and forward in the view.
bool allowsSwipes(Platform::WebView& view);

/// Runs a script in the page, without waiting for it.
void runScript(Platform::WebView& view, const std::string& script);

/// Kills the processes, the view's web process among them, and waits until the view has been told.
[[nodiscard]] bool killWebProcesses(Platform::WebView& view, const std::vector<pid_t>& processes);

/// Sends requests of the view's network session to a proxy at a port of loopback, except requests to this
/// host and those that have begun already.
void redirectTraffic(Platform::WebView& view, int port);

/// As long as it lives, what web views ask of other hosts than this one goes to a port of loopback, as to a
/// proxy: nothing leaves the machine.
class TrafficRedirection {
public:
    explicit TrafficRedirection(int port);
    TrafficRedirection(const TrafficRedirection&) = delete;
    TrafficRedirection& operator=(const TrafficRedirection&) = delete;
    ~TrafficRedirection();
};

} // namespace TestSupport
