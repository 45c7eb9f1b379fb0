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

    /// Where the view stands in its superview. For a view inside a stack or under constraints the layout
    /// decides.
    Rect frame() const;
    void setFrame(const Rect& frame);

    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);

    /// Drawn behind the view's content.
    Color backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(Color color);

    /// What assistive technology calls the view; a tool tip does not follow from it.
    const std::string& accessibilityLabel() const { return accessibilityLabel_; }
    void setAccessibilityLabel(const std::string& label);

    const std::string& toolTip() const { return toolTip_; }
    void setToolTip(const std::string& toolTip);

    LayoutPriority contentHuggingPriority(Orientation orientation) const;
    void setContentHuggingPriority(LayoutPriority priority, Orientation orientation);
    LayoutPriority contentCompressionResistancePriority(Orientation orientation) const;
    void setContentCompressionResistancePriority(LayoutPriority priority, Orientation orientation);

    /// Asks for `layout` before the window is next drawn.
    void setNeedsLayout();

    /// Places the subviews; called when the view's size changed or `setNeedsLayout` asked for it. Overriders
    /// place what the inherited layout does not.
    virtual void layout() {}

    /// The system's side of the view, for Platform's own sources.
    struct Native;
    /// Makes the native side when there is none yet.
    Native& native();
    Native* nativeIfMade() const { return native_.get(); }

    /// What constraints say of the view's size; see `LayoutConstraint`.
    struct SizeConstraints {
        std::optional<double> width;
        std::optional<double> height;
        bool fillsSuperviewWidth = false;
        bool fillsSuperviewHeight = false;
    };
    const SizeConstraints& sizeConstraints() const { return sizeConstraints_; }

protected:
    /// `className` is the name under which an object runtime, where there is one, knows the class.
    explicit View(std::string_view className = {});

    virtual std::unique_ptr<Native> makeNative();

private:
    /// The list of subviews changed: the native side follows when it is on the screen, else when it next is.
    void subviewsChanged();

    friend class LayoutConstraint;
    friend class Window;
    friend struct ViewLayout;

    std::string className_;
    std::weak_ptr<View> superview_;
    std::weak_ptr<Window> window_; // set on a content view only
    std::vector<std::shared_ptr<View>> subviews_;
    Rect frame_;
    bool hidden_ = false;
    Color backgroundColor_ = Color::none;
    std::string accessibilityLabel_;
    std::string toolTip_;
    std::array<LayoutPriority, 2> hugging_ = {LayoutPriorities::defaultLow, LayoutPriorities::defaultLow};
    std::array<LayoutPriority, 2> compressionResistance_ = {LayoutPriorities::defaultHigh,
                                                            LayoutPriorities::defaultHigh};
    SizeConstraints sizeConstraints_;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
