#include "Platform/AppKit/StackView.h"

#include "Platform/AppKit/linux/ViewNative.h"

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

    // A GtkOverlay requests no space for the widgets over its main child. The size group makes it request the
    // size of the box perpendicular to the stack's direction. In the stack's direction, the overlay clips
    // content that does not fit.
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
    native->followSubviews(*this);
    return native;
}

} // namespace Platform
