#include "Platform/AppKit/View.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/ViewNative.h"

#include <algorithm>
#include <cmath>

namespace Platform {

namespace {

GQuark viewQuark() {
    static const GQuark quark = g_quark_from_static_string("keyloft-view");
    return quark;
}

GtkWidget* widgetIfMade(const View& view) {
    return view.nativeIfMade() ? view.nativeIfMade()->widget.get() : nullptr;
}

gboolean queryToolTip(GtkWidget* /*widget*/, int /*x*/, int /*y*/, gboolean /*byKeyboard*/, GtkTooltip* shown,
                      gpointer view) {
    gtk_tooltip_set_text(shown, toolTipText(static_cast<View*>(view)->toolTip()).c_str());
    return TRUE;
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

void View::createNative() {
    native_ = makeNative();
    g_object_set_qdata(G_OBJECT(native_->widget.get()), viewQuark(), this);
}

void View::applyHidden() const { gtk_widget_set_visible(native_->widget.get(), !hidden_); }

void View::applyBackgroundColor() const {
    if (backgroundColor_ == Color::controlAccent) {
        gtk_widget_add_css_class(native_->widget.get(), "keyloft-accent");
    } else {
        gtk_widget_remove_css_class(native_->widget.get(), "keyloft-accent");
    }
}

void View::applyAccessibilityLabel() const { setAccessibleName(native_->widget.get(), accessibilityLabel_); }

void View::applyAccessibilityProgress(double fraction) const {
    GtkWidget* widget = native_->widget.get();
    if (!gtk_widget_get_root(widget)) { // GTK permits setting a role only outside of a window
        g_object_set(widget, "accessible-role", GTK_ACCESSIBLE_ROLE_PROGRESS_BAR, nullptr);
    }
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_VALUE_MAX, 1.0,
                                   GTK_ACCESSIBLE_PROPERTY_VALUE_MIN, 0.0, GTK_ACCESSIBLE_PROPERTY_VALUE_NOW,
                                   fraction, -1);
}

/// Handles `query-tooltip` instead of setting GTK's tooltip text. Each call to `gtk_widget_set_tooltip_text`
/// queries the display for the pointer's position and waits for the reply, which adds up to hundreds of round
/// trips for a bookmarks bar (seen with GTK 4.8.3, not reported).
void View::applyToolTip() {
    GtkWidget* widget = native_->widget.get();
    gtk_widget_set_has_tooltip(widget, !toolTip_.empty());
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION,
                                   toolTipText(toolTip_).c_str(), -1);
    native_->toolTipConnection = SignalConnection(widget, "query-tooltip", G_CALLBACK(queryToolTip), this);
}

void View::applyFixedLength(Orientation /*orientation*/) const {
    gtk_widget_set_size_request(native_->widget.get(), static_cast<int>(fixedLengths_[0].value_or(-1)),
                                static_cast<int>(fixedLengths_[1].value_or(-1)));
}

/// Sets the expand property explicitly, because GTK otherwise expands a widget whose children expand.
void View::applyExpansion(Orientation orientation) const {
    const auto apply =
        orientation == Orientation::horizontal ? gtk_widget_set_hexpand : gtk_widget_set_vexpand;
    apply(native_->widget.get(), expands_[indexOf(orientation)]);
}

void View::setNeedsLayout() {
    // Do not request another layout while `layout` sets the frames of the subviews.
    if (native_ && !native_->isPlacing) {
        gtk_widget_queue_allocate(native_->widget.get());
    }
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
