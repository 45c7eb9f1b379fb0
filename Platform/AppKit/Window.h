#pragma once

#include "Platform/AppKit/View.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Platform {

class Window;
class WindowController;
struct Alert;

/// Receives the events of a window. Main thread only.
class WindowDelegate {
public:
    virtual ~WindowDelegate() = default;

    /// Called exactly once, when the window is about to close. Not called if the window is only ordered out.
    virtual void windowWillClose(Window& window) = 0;
};

/// A window, or one tab of a native window that several windows share. Main thread only.
///
/// Windows with the same tabbing identifier can be tabs of one native window. Each tab has its own title,
/// content and first responder. On Linux the native window is created when it is first shown.
class Window : public Responder, public std::enable_shared_from_this<Window> {
public:
    /// The operations that the user can perform with a window's frame.
    struct Style {
        /// True if the frame has the corresponding button or, for `resizable`, edges that can be dragged.
        bool closable = true;
        bool miniaturizable = true;
        bool resizable = true;
    };

    /// `contentSize` is the initial size of the content, excluding the menu bar, the tab strip and the frame.
    static std::shared_ptr<Window> create(Size contentSize, Style style);

    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() override;

    /// The title, which is shown in the frame, the tab and the list of open windows.
    const std::string& title() const { return title_; }
    void setTitle(const std::string& title);

    /// The content size and the style with which the window was created.
    Size contentSize() const { return contentSize_; }
    const Style& style() const { return style_; }

    /// The minimum size to which the user can resize the content (on Linux) or the whole window (on macOS).
    Size minSize() const { return minSize_; }
    void setMinSize(Size size);

    /// The identifier that groups windows into tabs. Used only on macOS, when the window is first shown.
    const std::string& tabbingIdentifier() const { return tabbingIdentifier_; }
    void setTabbingIdentifier(const std::string& identifier) { tabbingIdentifier_ = identifier; }

    /// Centers the window when it is first shown. Ignored on Linux, because GTK 4 cannot position windows.
    void center() { centered_ = true; }

    /// The name under which the window's frame is saved between runs. The frame consists of the size, the
    /// maximized state and, on macOS, the position. A new window gets the frame that was saved last.
    const std::string& frameAutosaveName() const { return frameAutosaveName_; }
    void setFrameAutosaveName(const std::string& name) { frameAutosaveName_ = name; }

    /// The view that fills the window.
    const std::shared_ptr<View>& contentView() const { return contentView_; }
    /// Replaces the content view. A window is created with an empty content view.
    void setContentView(const std::shared_ptr<View>& view);

    /// Sets the delegate, which is held weakly.
    void setDelegate(const std::weak_ptr<WindowDelegate>& delegate) { delegate_ = delegate; }
    /// The controller that owns the window, or null.
    std::shared_ptr<WindowController> windowController() const { return controller_.lock(); }

    /// Adds `window` as a tab right after this window's tab. The tab is shown, but not selected.
    void addTabbedWindow(const std::shared_ptr<Window>& window);

    /// Shows the window, selects its tab and gives it the keyboard focus.
    void makeKeyAndOrderFront();
    /// Hides the window and, on Linux, all other tabs of its native window. The content keeps running.
    void orderOut();

    /// Returns true if the window is on the screen and, if it is a tab, selected.
    bool isVisible() const;

    /// The view that has the keyboard focus whenever this window is the key window.
    void makeFirstResponder(const std::shared_ptr<View>& view);
    std::shared_ptr<View> firstResponder() const;

    /// If true, which is the default, the window cannot be shown again after it is closed. If false, closing
    /// the window only orders it out, and the delegate is not notified.
    bool isReleasedWhenClosed() const { return releasedWhenClosed_; }
    void setReleasedWhenClosed(bool released) { releasedWhenClosed_ = released; }

    /// Shows an alert as a sheet on the window. Other tabs and windows remain usable. Several sheets are
    /// shown one at a time. `completion`, if not null, is called once with the index of the chosen button.
    void beginSheet(const Alert& alert, std::function<void(std::size_t button)> completion);

    /// Dismisses pending sheets using their safe buttons, notifies the delegate and closes the window or tab.
    void close();

    /// Implement the standard actions of a window.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

    /// The native side of the window. Internal to Platform.
    struct Native;
    Native& native() { return *native_; }

protected:
    /// Use `create` instead.
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
