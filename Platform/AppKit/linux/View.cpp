#include "Platform/AppKit/View.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/ContainerWidget.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/ViewNative.h"

#include <algorithm>
#include <cstddef>

namespace Platform {

namespace {

GQuark viewQuark() {
    static const GQuark quark = g_quark_from_static_string("keyloft-view");
    return quark;
}

std::size_t indexOf(Orientation orientation) { return orientation == Orientation::horizontal ? 0 : 1; }

GtkWidget* widgetIfMade(const View& view) {
    return view.nativeIfMade() ? view.nativeIfMade()->widget.get() : nullptr;
}

gboolean queryToolTip(GtkWidget* /*widget*/, int /*x*/, int /*y*/, gboolean /*byKeyboard*/, GtkTooltip* shown,
                      gpointer view) {
    gtk_tooltip_set_text(shown, toolTipText(static_cast<View*>(view)->toolTip()).c_str());
    return TRUE;
}

/// The toolkit's own text would have each widget that gets one ask the display where the pointer is, and wait
/// for the answer: hundreds of times for a bar of bookmarks.
void applyToolTip(View& view, View::Native& native) {
    GtkWidget* widget = native.widget.get();
    gtk_widget_set_has_tooltip(widget, !view.toolTip().empty());
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION,
                                   toolTipText(view.toolTip()).c_str(), -1);
    native.toolTipConnection = SignalConnection(widget, "query-tooltip", G_CALLBACK(queryToolTip), &view);
}

void applyAccessibilityLabel(GtkWidget* widget, const std::string& label) {
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL, label.c_str(), -1);
}

void applyBackgroundColor(GtkWidget* widget, Color color) {
    if (color == Color::controlAccent) {
        gtk_widget_add_css_class(widget, "keyloft-accent");
    } else {
        gtk_widget_remove_css_class(widget, "keyloft-accent");
    }
}

} // namespace

View::Native::~Native() {
    connections.clear();
    toolTipConnection.disconnect();
    if (widget) {
        g_object_set_qdata(G_OBJECT(widget.get()), viewQuark(), nullptr);
    }
}

View* viewOfWidget(GtkWidget* widget) {
    for (; widget; widget = gtk_widget_get_parent(widget)) {
        if (auto* view = static_cast<View*>(g_object_get_qdata(G_OBJECT(widget), viewQuark()))) {
            return view;
        }
    }
    return nullptr;
}

View::View(std::string_view className)
    : className_(className) {
    assertMainThread("View");
}

View::~View() = default;

void View::addSubview(const std::shared_ptr<View>& view) {
    view->removeFromSuperview();
    subviews_.push_back(view);
    view->superview_ = weak_from_this();
    subviewsChanged();
}

void View::removeFromSuperview() {
    const auto superview = superview_.lock();
    if (!superview) {
        return;
    }
    const auto keptAlive = shared_from_this();
    std::erase(superview->subviews_, keptAlive);
    superview_.reset();
    superview->subviewsChanged();
}

void View::subviewsChanged() {
    if (native_) {
        native_->subviewsChanged();
    }
}

Rect View::frame() const { return frame_; }

void View::setFrame(const Rect& frame) {
    if (frame_ == frame) {
        return;
    }
    frame_ = frame;
    if (const auto parent = superview()) {
        parent->setNeedsLayout();
    }
}

void View::setHidden(bool hidden) {
    if (hidden_ == hidden) {
        return;
    }
    hidden_ = hidden;
    if (GtkWidget* widget = widgetIfMade(*this)) {
        gtk_widget_set_visible(widget, !hidden);
    }
}

void View::setBackgroundColor(Color color) {
    backgroundColor_ = color;
    if (GtkWidget* widget = widgetIfMade(*this)) {
        applyBackgroundColor(widget, color);
    }
}

void View::setAccessibilityLabel(const std::string& label) {
    accessibilityLabel_ = label;
    if (GtkWidget* widget = widgetIfMade(*this)) {
        applyAccessibilityLabel(widget, label);
    }
}

void View::setToolTip(const std::string& toolTip) {
    toolTip_ = toolTip;
    if (native_) {
        applyToolTip(*this, *native_);
    }
}

LayoutPriority View::contentHuggingPriority(Orientation orientation) const {
    return hugging_[indexOf(orientation)];
}

void View::setContentHuggingPriority(LayoutPriority priority, Orientation orientation) {
    hugging_[indexOf(orientation)] = priority;
}

LayoutPriority View::contentCompressionResistancePriority(Orientation orientation) const {
    return compressionResistance_[indexOf(orientation)];
}

void View::setContentCompressionResistancePriority(LayoutPriority priority, Orientation orientation) {
    compressionResistance_[indexOf(orientation)] = priority;
}

void View::setNeedsLayout() {
    if (native_) {
        native_->needsLayout();
    }
}

View::Native& View::native() {
    assertMainThread("View::native");
    if (!native_) {
        native_ = makeNative();
        GtkWidget* widget = native_->widget.get();
        g_object_set_qdata(G_OBJECT(widget), viewQuark(), this);
        gtk_widget_set_visible(widget, !hidden_);
        if (backgroundColor_ != Color::none) {
            applyBackgroundColor(widget, backgroundColor_);
        }
        if (!toolTip_.empty()) {
            applyToolTip(*this, *native_);
        }
        if (!accessibilityLabel_.empty()) {
            applyAccessibilityLabel(widget, accessibilityLabel_);
        }
    }
    return *native_;
}

std::unique_ptr<View::Native> View::makeNative() {
    return makeContainer(*this, std::make_unique<FrameLayout>(*this));
}

} // namespace Platform
