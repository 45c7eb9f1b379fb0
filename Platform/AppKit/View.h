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

/// A rectangle of a window. Main thread only.
///
/// A view is a plain object. What stands for it on the screen is made when its window is next shown, so that
/// a view in a tab that nobody looks at costs next to nothing; until then every property is kept here, and
/// the native side takes them over. The view is the source of truth for all but what the user changes.
///
/// A superview holds its subviews strongly; a view knows its superview and window weakly.
class View : public Responder, public std::enable_shared_from_this<View> {
public:
    /// Creates a view without content: a container, or free room in a stack.
    static std::shared_ptr<View> create();

    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View() override;

    /// Adds the view in front of the other subviews; takes it out of where it was before.
    void addSubview(const std::shared_ptr<View>& view);
    void removeFromSuperview();
    std::shared_ptr<View> superview() const { return superview_.lock(); }
    const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }

    /// The window that shows the view, or nothing.
    std::shared_ptr<Window> window() const;

    /// The rectangle of the view in its superview. The layout sets it for a view that is in a stack or fills
    /// its superview.
    Rect frame() const;
    void setFrame(const Rect& frame);

    /// A hidden view takes no room in its stack.
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);

    /// Drawn behind the view's content.
    Color backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(Color color);

    /// What assistive technology calls the view; a tool tip does not follow from it.
    const std::string& accessibilityLabel() const { return accessibilityLabel_; }
    void setAccessibilityLabel(const std::string& label);

    /// Empty for none.
    const std::string& toolTip() const { return toolTip_; }
    void setToolTip(const std::string& toolTip);

    /// Keeps the view as large as its superview, which is not a stack. Call it before the view is added.
    void setFillsSuperview() { fillsSuperview_ = true; }

    /// Sets the width or the height, in points. Otherwise the content determines it.
    void setFixedLength(double length, Orientation orientation);

    /// Gives the view the free room of its stack. If room is missing, the view is the first to shrink.
    void setExpands(Orientation orientation);

    /// Asks for `layout` before the window is next drawn.
    void setNeedsLayout();

    /// Sets the frames of the subviews. Called when the view's size has changed and after `setNeedsLayout`.
    virtual void layout() {}

    /// The system's side of the view, for Platform's own sources.
    struct Native;
    /// Makes the native side when there is none yet.
    Native& native();
    Native* nativeIfMade() const { return native_.get(); }

protected:
    /// `className` is the name under which an object runtime, where there is one, knows the class.
    explicit View(std::string_view className = {});

    /// Creates the native side of the view's kind.
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
    std::string toolTip_;
    bool fillsSuperview_ = false;
    // Indexed by `Orientation`.
    std::array<std::optional<double>, 2> fixedLengths_;
    std::array<bool, 2> expands_{};
    std::unique_ptr<Native> native_;
};

/// Decoration that separates or groups views.
class Box : public View {
public:
    /// A horizontal line, one point thick.
    static std::shared_ptr<Box> createSeparator();

protected:
    Box() = default;
    std::unique_ptr<Native> makeNative() override;
};

} // namespace Platform
