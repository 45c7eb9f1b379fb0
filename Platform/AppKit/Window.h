#pragma once

#include "Platform/AppKit/View.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Platform {

class Window;
class WindowController;

/// Receives the events of a window. Main thread only.
class WindowDelegate {
public:
    virtual ~WindowDelegate() = default;

    /// Called exactly once, when the window is about to close for good.
    virtual void windowWillClose(Window& window) = 0;
};

/// A window, or one tab of a native window that several windows share. Main thread only.
///
/// Windows with the same tabbing identifier may be tabs of one native window; each still has its own title,
/// content and first responder. On Linux no native window is created before the window is first shown.
class Window : public Responder, public std::enable_shared_from_this<Window> {
public:
    /// The operations that the user can perform on a window's frame.
    struct Style {
        /// True if the frame has the button or, for a resizable window, edges that can be dragged.
        bool closable = true;
        bool miniaturizable = true;
        bool resizable = true;
    };

    /// `contentSize` is the initial size of the content, without menu bar, tab strip and frame.
    static std::shared_ptr<Window> create(Size contentSize, Style style);

    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() override;

    /// Shown in the frame, the tab and the list of open windows.
    const std::string& title() const { return title_; }
    void setTitle(const std::string& title);

    /// The size and the style that the window was created with.
    Size contentSize() const { return contentSize_; }
    const Style& style() const { return style_; }

    /// The minimum size that the user can resize to: that of the content, or on macOS of the window with its
    /// frame.
    Size minSize() const { return minSize_; }
    void setMinSize(Size size);

    /// Windows with the same identifier become tabs of one native window. Read on macOS only, when the window
    /// is first shown.
    const std::string& tabbingIdentifier() const { return tabbingIdentifier_; }
    void setTabbingIdentifier(const std::string& identifier) { tabbingIdentifier_ = identifier; }

    /// Centers the window on the screen when it is first shown. Has no effect on Linux, because GTK 4 cannot
    /// position a window.
    void center() { centered_ = true; }

    /// The name under which the frame is saved from one run to the next: size and maximised state, and on
    /// macOS also the position. A new window gets the frame that was saved last.
    const std::string& frameAutosaveName() const { return frameAutosaveName_; }
    void setFrameAutosaveName(const std::string& name) { frameAutosaveName_ = name; }

    /// The view that fills the window.
    const std::shared_ptr<View>& contentView() const { return contentView_; }
    /// Replaces the content view. A window is created with an empty one.
    void setContentView(const std::shared_ptr<View>& view);

    /// Held weakly.
    void setDelegate(const std::weak_ptr<WindowDelegate>& delegate) { delegate_ = delegate; }
    /// The controller that owns the window, or null.
    std::shared_ptr<WindowController> windowController() const { return controller_.lock(); }

    /// Adds `window` as a tab right after this window's tab. The tab is shown, but not selected.
    void addTabbedWindow(const std::shared_ptr<Window>& window);

    /// Shows the window, selects its tab and gives it the keyboard focus.
    void makeKeyAndOrderFront();
    /// Hides the window, on Linux together with all tabs of its native window. Its content keeps running, and
    /// it can be shown again.
    void orderOut();

    /// Returns true while the window, or its tab, is on the screen.
    bool isVisible() const;

    /// The view that has the keyboard focus while this window is the key window. Remembered while it is not.
    void makeFirstResponder(const std::shared_ptr<View>& view);
    std::shared_ptr<View> firstResponder() const;

    /// True by default: closing ends the window. If false, closing only orders it out, and the delegate is
    /// not notified.
    bool isReleasedWhenClosed() const { return releasedWhenClosed_; }
    void setReleasedWhenClosed(bool released) { releasedWhenClosed_ = released; }

    /// Closes the window: answers its pending sheets with their safe buttons, notifies the delegate once and
    /// closes the native window or tab.
    void close();

    /// Performs the standard actions of a window.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

    /// The native side, for Platform's own sources.
    struct Native;
    Native& native() { return *native_; }

protected:
    /// For `create`.
    Window(Size contentSize, Style style);

private:
    friend class WindowController;

    std::string title_;
    Size contentSize_;
    Style style_;
    Size minSize_;
    std::string tabbingIdentifier_;
    std::string frameAutosaveName_;
    bool centered_ = false;
    bool closed_ = false;
    bool releasedWhenClosed_ = true;
    std::shared_ptr<View> contentView_;
    std::weak_ptr<WindowDelegate> delegate_;
    std::weak_ptr<WindowController> controller_;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
