#pragma once

#include "Platform/AppKit/Appearance.h"
#include "Platform/AppKit/Geometry.h"
#include "Platform/AppKit/Responder.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

class Window;

/// A rectangular area of a window. Main thread only.
///
/// The native side of a view is created when it is first needed. On Linux this is usually when the view's
/// window is next shown, so a view in a tab that is never selected costs little. Properties that are set
/// earlier are stored in the view and applied then. The view is the source of truth for everything except the
/// user's changes.
///
/// A superview holds strong references to its subviews. A view holds weak references to its superview and its
/// window.
class View : public Responder, public std::enable_shared_from_this<View> {
public:
    /// Creates an empty view, which can serve as a container or as free space in a stack.
    static std::shared_ptr<View> create();

    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View() override;

    /// Adds the view in front of the other subviews, after removing it from its previous superview.
    void addSubview(const std::shared_ptr<View>& view);
    void removeFromSuperview();
    std::shared_ptr<View> superview() const { return superview_.lock(); }
    const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }

    /// Returns the window that contains the view, or null.
    std::shared_ptr<Window> window() const;

    /// The rectangle of the view in its superview. If the view is in a stack or fills its superview, the
    /// layout sets the frame.
    Rect frame() const;
    void setFrame(const Rect& frame);

    /// A hidden view takes no space in its stack.
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);

    /// Drawn behind the view's content.
    Color backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(Color color);

    /// The name of the view for assistive technology. It does not set a tool tip.
    const std::string& accessibilityLabel() const { return accessibilityLabel_; }
    void setAccessibilityLabel(const std::string& label);

    /// Presents the view to assistive technology as a progress indicator at `fraction`, from 0 to 1. The
    /// first call must precede the creation of the native side.
    void setAccessibilityProgress(double fraction);

    /// Empty if the view has no tool tip.
    const std::string& toolTip() const { return toolTip_; }
    void setToolTip(const std::string& toolTip);

    /// Keeps the view the same size as its superview, which must not be a stack. Call it before the view is
    /// added to its superview.
    void setFillsSuperview() { fillsSuperview_ = true; }

    /// Sets a fixed width or height, in points. By default, the content determines the size.
    void setFixedLength(double length, Orientation orientation);

    /// Lets the view take up free space in its stack. If there is too little space, the view shrinks before
    /// the others.
    void setExpands(Orientation orientation);

    /// Requests a call of `layout` before the window is next drawn.
    void setNeedsLayout();

    /// Sets the frames of the subviews. Called when the view's size has changed and after `setNeedsLayout`.
    virtual void layout() {}

    /// The native side of the view. Internal to Platform.
    struct Native;
    /// Return the native side. `native` creates it on the first call; `nativeIfMade` returns null if it has
    /// not been created yet.
    Native& native();
    Native* nativeIfMade() const { return native_.get(); }

protected:
    /// `className` is the name under which the class is registered with the Objective-C runtime. Ignored on
    /// Linux.
    explicit View(std::string_view className = {});

    /// Creates the native side. Subclasses override this function.
    virtual std::unique_ptr<Native> makeNative();

private:
    friend class Window;

    /// Adds the native side of a subview to that of this view.
    void addNativeSubview(View& subview);

    std::string className_;
    std::weak_ptr<View> superview_;
    std::weak_ptr<Window> window_; // set on a content view only
    std::vector<std::shared_ptr<View>> subviews_;
    Rect frame_;
    bool hidden_ = false;
    Color backgroundColor_ = Color::none;
    std::string accessibilityLabel_;
    std::optional<double> accessibilityProgress_; // absent if the view is not a progress indicator
    std::string toolTip_;
    bool fillsSuperview_ = false;
    // Indexed by `Orientation`.
    std::array<std::optional<double>, 2> fixedLengths_;
    std::array<bool, 2> expands_{};
    std::unique_ptr<Native> native_;
};

/// A decoration that separates or groups views.
class Box : public View {
public:
    /// Creates a horizontal line, one point thick.
    static std::shared_ptr<Box> createSeparator();

protected:
    Box() = default;
    std::unique_ptr<Native> makeNative() override;
};

} // namespace Platform
