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

    /// The window is about to close for good; told exactly once.
    virtual void windowWillClose(Window& window) = 0;
};

/// A window, or one tab of a window that several share. Main thread only.
///
/// Windows with the same tabbing identifier may be tabs of one native window; each still has its own title,
/// content and first responder. On Linux nothing native is made before the window is first shown.
class Window : public Responder, public std::enable_shared_from_this<Window> {
public:
    /// What the user can do with a window's frame.
    struct Style {
        /// True if the frame has the button, or the edges to drag.
        bool closable = true;
        bool miniaturizable = true;
        bool resizable = true;
    };

    /// `contentSize` is the content's at first, without menu bar, tab strip and frame.
    static std::shared_ptr<Window> create(Size contentSize, Style style);

    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() override;

    /// Shown in the frame, the tab and the list of open windows.
    const std::string& title() const { return title_; }
    void setTitle(const std::string& title);

    /// As the window was created.
    Size contentSize() const { return contentSize_; }
    const Style& style() const { return style_; }

    /// The least size that the user can give it: of the content, or on macOS of the window with its frame.
    Size minSize() const { return minSize_; }
    void setMinSize(Size size);

    /// Only macOS reads it, when the window is first shown.
    const std::string& tabbingIdentifier() const { return tabbingIdentifier_; }
    void setTabbingIdentifier(const std::string& identifier) { tabbingIdentifier_ = identifier; }

    /// In the middle of the screen when it is first shown, where the system lets a program choose.
    void center() { centered_ = true; }

    /// The name under which the system keeps the frame from one run to the next: size and maximised state,
    /// and where the system tells it, the position. A new window takes the frame that was kept last.
    const std::string& frameAutosaveName() const { return frameAutosaveName_; }
    void setFrameAutosaveName(const std::string& name) { frameAutosaveName_ = name; }

    /// The view that fills the window.
    const std::shared_ptr<View>& contentView() const { return contentView_; }
    /// Takes the place of the view that the window was made with.
    void setContentView(const std::shared_ptr<View>& view);

    /// Held weakly.
    void setDelegate(const std::weak_ptr<WindowDelegate>& delegate) { delegate_ = delegate; }
    /// The controller that owns the window, or null.
    std::shared_ptr<WindowController> windowController() const { return controller_.lock(); }

    /// Makes `window` a tab of this window, in front of this one's tab; it is shown, not selected.
    void addTabbedWindow(const std::shared_ptr<Window>& window);

    /// Shows the window, selects its tab and gives it the keyboard.
    void makeKeyAndOrderFront();
    /// Takes the window off the screen, on Linux with all tabs that share its native one. It keeps its
    /// content, which goes on as before, and may be shown again.
    void orderOut();

    /// Returns true while the window, or its tab, is on the screen.
    bool isVisible() const;

    /// The view that has the keyboard while this window is the key one; remembered while it is not.
    void makeFirstResponder(const std::shared_ptr<View>& view);
    std::shared_ptr<View> firstResponder() const;

    /// Whether closing ends the window, which is how it begins. Otherwise it only orders the window out, and
    /// nobody is told.
    bool isReleasedWhenClosed() const { return releasedWhenClosed_; }
    void setReleasedWhenClosed(bool released) { releasedWhenClosed_ = released; }

    /// Closes the window: tells the delegate once, answers a pending sheet with its safe answer, lets the
    /// native side go.
    void close();

    /// Performs the standard actions of a window.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

    /// The system's side, for Platform's own sources.
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
