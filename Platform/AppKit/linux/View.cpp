#include "Platform/AppKit/View.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/ViewNative.h"

#include <algorithm>
#include <cmath>
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

/// Handles `query-tooltip` instead of setting GTK's tool tip text. Each call to `gtk_widget_set_tooltip_text`
/// queries the display for the pointer's position and waits for the reply, which adds up to hundreds of round
/// trips for a bookmarks bar (seen with GTK 4.8.3, not reported).
void applyToolTip(View& view, View::Native& native) {
    GtkWidget* widget = native.widget.get();
    gtk_widget_set_has_tooltip(widget, !view.toolTip().empty());
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION,
                                   toolTipText(view.toolTip()).c_str(), -1);
    native.toolTipConnection = SignalConnection(widget, "query-tooltip", G_CALLBACK(queryToolTip), &view);
}

void applyAccessibilityProgress(GtkWidget* widget, double fraction) {
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_VALUE_MAX, 1.0,
                                   GTK_ACCESSIBLE_PROPERTY_VALUE_MIN, 0.0, GTK_ACCESSIBLE_PROPERTY_VALUE_NOW,
                                   fraction, -1);
}

void applyBackgroundColor(GtkWidget* widget, Color color) {
    if (color == Color::controlAccent) {
        gtk_widget_add_css_class(widget, "keyloft-accent");
    } else {
        gtk_widget_remove_css_class(widget, "keyloft-accent");
    }
}

void applyFixedLengths(GtkWidget* widget, const std::array<std::optional<double>, 2>& lengths) {
    gtk_widget_set_size_request(widget, static_cast<int>(lengths[0].value_or(-1)),
                                static_cast<int>(lengths[1].value_or(-1)));
}

/// Sets the expansion in both directions, because otherwise GTK expands a widget whose children expand.
void applyExpansion(GtkWidget* widget, const std::array<bool, 2>& expands) {
    gtk_widget_set_hexpand(widget, expands[0]);
    gtk_widget_set_vexpand(widget, expands[1]);
}

} // namespace

View::Native::~Native() {
    connections.clear();
    toolTipConnection.disconnect();
    if (widget) {
        g_object_set_qdata(G_OBJECT(widget.get()), viewQuark(), nullptr);
    }
}

void View::Native::followSubviews(View& view) {
    const auto addMissing = [](GtkWidget* /*widget*/, gpointer data) {
        auto& mapped = *static_cast<View*>(data);
        for (const auto& subview : mapped.subviews()) {
            if (!gtk_widget_get_parent(subview->native().widget.get())) {
                mapped.addNativeSubview(*subview);
            }
        }
    };
    connections.emplace_back(widget.get(), "map", G_CALLBACK(+addMissing), &view);
}

void setAccessibleName(GtkWidget* widget, const std::string& name) {
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL, name.c_str(), -1);
}

GObjectPtr<GtkWidget> makeOverlay() {
    return GObjectPtr<GtkWidget>::retain(
        GTK_WIDGET(g_object_new(GTK_TYPE_OVERLAY, "overflow", GTK_OVERFLOW_HIDDEN, "accessible-role",
                                GTK_ACCESSIBLE_ROLE_GROUP, nullptr)));
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
    if (native_ && gtk_widget_get_mapped(native_->widget.get())) {
        addNativeSubview(*view);
    }
}

void View::addNativeSubview(View& subview) { native_->addSubview(subview.native().widget.get()); }

void View::removeFromSuperview() {
    const auto superview = superview_.lock();
    if (!superview) {
        return;
    }
    const auto keptAlive = shared_from_this();
    std::erase(superview->subviews_, keptAlive);
    superview_.reset();
    if (GtkWidget* widget = widgetIfMade(*this); widget && gtk_widget_get_parent(widget)) {
        gtk_widget_unparent(widget);
    }
}

Rect View::frame() const {
    GtkWidget* widget = widgetIfMade(*this);
    GtkWidget* around = widget ? gtk_widget_get_parent(widget) : nullptr;
    if (const auto superview = this->superview()) {
        around = widgetIfMade(*superview);
    }
    graphene_rect_t bounds;
    if (!widget || !around || !gtk_widget_compute_bounds(widget, around, &bounds)) {
        return frame_;
    }
    return {bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height};
}

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
        setAccessibleName(widget, label);
    }
}

void View::setAccessibilityProgress(double fraction) {
    accessibilityProgress_ = fraction;
    if (GtkWidget* widget = widgetIfMade(*this)) {
        applyAccessibilityProgress(widget, fraction);
    }
}

void View::setToolTip(const std::string& toolTip) {
    toolTip_ = toolTip;
    if (native_) {
        applyToolTip(*this, *native_);
    }
}

void View::setFixedLength(double length, Orientation orientation) {
    fixedLengths_[indexOf(orientation)] = length;
    if (GtkWidget* widget = widgetIfMade(*this)) {
        applyFixedLengths(widget, fixedLengths_);
    }
}

void View::setExpands(Orientation orientation) {
    expands_[indexOf(orientation)] = true;
    if (GtkWidget* widget = widgetIfMade(*this)) {
        applyExpansion(widget, expands_);
    }
}

void View::setNeedsLayout() {
    // Do not request another layout while `layout` sets the frames of the subviews.
    if (native_ && !native_->isPlacing) {
        gtk_widget_queue_allocate(native_->widget.get());
    }
}

View::Native& View::native() {
    assertMainThread("View::native");
    if (!native_) {
        native_ = makeNative();
        GtkWidget* widget = native_->widget.get();
        g_object_set_qdata(G_OBJECT(widget), viewQuark(), this);
        gtk_widget_set_visible(widget, !hidden_);
        applyFixedLengths(widget, fixedLengths_);
        applyExpansion(widget, expands_);
        if (backgroundColor_ != Color::none) {
            applyBackgroundColor(widget, backgroundColor_);
        }
        if (!toolTip_.empty()) {
            applyToolTip(*this, *native_);
        }
        if (!accessibilityLabel_.empty()) {
            setAccessibleName(widget, accessibilityLabel_);
        }
        if (accessibilityProgress_) {
            g_object_set(widget, "accessible-role", GTK_ACCESSIBLE_ROLE_PROGRESS_BAR, nullptr);
            applyAccessibilityProgress(widget, *accessibilityProgress_);
        }
    }
    return *native_;
}

std::unique_ptr<View::Native> View::makeNative() {
    struct OverlayNative final : Native {
        void addSubview(GtkWidget* subview) override {
            gtk_overlay_add_overlay(GTK_OVERLAY(widget.get()), subview);
        }
    };
    const auto place = [](GtkOverlay* /*overlay*/, GtkWidget* child, GdkRectangle* rectangle,
                          gpointer self) -> gboolean {
        const auto view = static_cast<View*>(self)->shared_from_this();
        const View* subview = viewOfWidget(child);
        if (subview->fillsSuperview_) {
            return FALSE;
        }
        view->native_->isPlacing = true;
        view->layout();
        view->native_->isPlacing = false;
        const Rect& frame = subview->frame_;
        GtkRequisition least;
        gtk_widget_get_preferred_size(child, &least, nullptr);
        *rectangle = {static_cast<int>(std::lround(frame.x)), static_cast<int>(std::lround(frame.y)),
                      std::max(least.width, static_cast<int>(std::lround(frame.width))),
                      std::max(least.height, static_cast<int>(std::lround(frame.height)))};
        return TRUE;
    };
    auto native = std::make_unique<OverlayNative>();
    native->widget = makeOverlay();
    native->connections.emplace_back(native->widget.get(), "get-child-position", G_CALLBACK(+place), this);
    native->followSubviews(*this);
    return native;
}

std::unique_ptr<View::Native> Box::makeNative() {
    auto native = std::make_unique<Native>();
    native->widget = GObjectPtr<GtkWidget>::retain(gtk_separator_new(GTK_ORIENTATION_HORIZONTAL));
    return native;
}

} // namespace Platform
