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
/// The native side of a view is created when it is first needed, and then receives the properties that were
/// set earlier. On Linux, it is usually created when the window is next shown, so a view in a tab that is
/// never selected costs little. The view is the source of truth for all state except the user's changes.
///
/// A view holds strong references to its subviews, and weak references to its superview and its window.
class View : public Responder, public std::enable_shared_from_this<View> {
public:
    /// Creates an empty view, which can serve as a container or as a spacer in a stack.
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

    /// The frame in the superview. Set by the layout if the view is in a stack or fills its superview.
    Rect frame() const;
    void setFrame(const Rect& frame);

    /// A hidden view takes no space in its stack.
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);

    /// The color that is drawn behind the view's content.
    Color backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(Color color);

    /// The name of the view for assistive technology. Does not set a tooltip.
    const std::string& accessibilityLabel() const { return accessibilityLabel_; }
    void setAccessibilityLabel(const std::string& label);

    /// Presents the view as a progress indicator, from 0 to 1. The first call must precede showing the view.
    void setAccessibilityProgress(double fraction);

    /// The tooltip, or an empty string if the view has no tooltip.
    const std::string& toolTip() const { return toolTip_; }
    void setToolTip(const std::string& toolTip);

    /// Makes the view fill its superview, which must not be a stack. Call it before the view is added.
    void setFillsSuperview() { fillsSuperview_ = true; }

    /// Sets a fixed width or height, in points. By default, the content determines the size.
    void setFixedLength(double length, Orientation orientation);

    /// Lets the view use free space in its stack. If space is short, the view shrinks before other views.
    void setExpands(Orientation orientation);

    /// Requests a call to `layout` before the window is next drawn.
    void setNeedsLayout();

    /// Sets the frames of the subviews. Called when the view's size has changed and after `setNeedsLayout`.
    virtual void layout() {}

    /// Called on Linux when another view has become the window's first responder.
    virtual void resignFirstResponder() {}

    /// The native side of the view. Internal to Platform.
    struct Native;
    /// Return the native side. If it does not exist yet, `native` creates it and `nativeIfMade` returns null.
    Native& native();
    Native* nativeIfMade() const { return native_.get(); }

protected:
    /// On macOS, `className` names the Objective-C class of the native view. Ignored on Linux.
    explicit View(std::string_view className = {});

    /// Creates the native side. Subclasses override this function.
    virtual std::unique_ptr<Native> makeNative();

private:
    friend class Window;

    static std::size_t indexOf(Orientation orientation) { return static_cast<std::size_t>(orientation); }
    void addNativeSubview(View& subview);
    /// Creates the native side and attaches a reference to the view.
    void createNative();
    // Apply a property to the native side, which must exist.
    void applyHidden() const;
    void applyBackgroundColor() const;
    void applyAccessibilityLabel() const;
    void applyAccessibilityProgress(double fraction) const;
    void applyToolTip();
    void applyFixedLength(Orientation orientation) const;
    void applyExpansion(Orientation orientation) const;

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
    // The layout settings of each dimension, indexed by `Orientation`.
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
