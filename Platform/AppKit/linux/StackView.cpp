#include "Platform/AppKit/StackView.h"

#include "Platform/AppKit/linux/ViewNative.h"

#include <algorithm>

namespace Platform {

std::unique_ptr<View::Native> StackView::makeNative() {
    struct StackNative final : Native {
        void addSubview(GtkWidget* subview) override {
            if (gtk_orientable_get_orientation(GTK_ORIENTABLE(box)) == GTK_ORIENTATION_HORIZONTAL) {
                gtk_widget_set_valign(subview, GTK_ALIGN_CENTER);
            }
            gtk_box_append(box, subview);
        }

        GtkBox* box = nullptr; // inside `widget`
    };
    const bool isRow = orientation_ == Orientation::horizontal;
    GtkWidget* box = gtk_box_new(isRow ? GTK_ORIENTATION_HORIZONTAL : GTK_ORIENTATION_VERTICAL,
                                 static_cast<int>(spacing_));
    gtk_widget_set_margin_top(box, static_cast<int>(insets_.top));
    gtk_widget_set_margin_start(box, static_cast<int>(insets_.left));
    gtk_widget_set_margin_bottom(box, static_cast<int>(insets_.bottom));
    gtk_widget_set_margin_end(box, static_cast<int>(insets_.right));

    // A GtkOverlay requests no space for overlay children, and clips those that do not fit along the stack.
    // Perpendicular to the stack, the size group makes it request as much space as the box.
    GtkWidget* main = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    const auto thickness = GObjectPtr<GtkSizeGroup>::adopt(
        gtk_size_group_new(isRow ? GTK_SIZE_GROUP_VERTICAL : GTK_SIZE_GROUP_HORIZONTAL));
    gtk_size_group_add_widget(thickness.get(), main);
    gtk_size_group_add_widget(thickness.get(), box);

    auto native = std::make_unique<StackNative>();
    native->widget = makeOverlay();
    native->box = GTK_BOX(box);
    gtk_overlay_set_child(GTK_OVERLAY(native->widget.get()), main);
    gtk_overlay_add_overlay(GTK_OVERLAY(native->widget.get()), box);
    // GtkOverlay would let wide content overflow to the right, even if the text direction is right to left.
    const auto place = [](GtkWidget* overlay, GtkWidget* content, GdkRectangle* rectangle,
                          gpointer /*data*/) -> gboolean {
        GtkRequisition least;
        gtk_widget_get_preferred_size(content, &least, nullptr);
        const int width = gtk_widget_get_width(overlay);
        rectangle->width = std::max(width, least.width);
        rectangle->height = std::max(gtk_widget_get_height(overlay), least.height);
        const bool isMirrored = gtk_widget_get_direction(overlay) == GTK_TEXT_DIR_RTL;
        rectangle->x = isMirrored ? width - rectangle->width : 0;
        rectangle->y = 0;
        return TRUE;
    };
    native->connections.emplace_back(native->widget.get(), "get-child-position", G_CALLBACK(+place), nullptr);
    native->followSubviews(*this);
    return native;
}

} // namespace Platform
