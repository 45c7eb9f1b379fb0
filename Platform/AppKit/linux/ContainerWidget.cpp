#include "Platform/AppKit/linux/ContainerWidget.h"

#include "Platform/AppKit/linux/ViewNative.h"

#include <cmath>
#include <memory>
#include <unordered_set>

namespace Platform {

namespace {

struct ContainerState {
    View* view = nullptr; // cleared when the view goes before the widget
    std::unique_ptr<ContainerLayout> layout;
    guint pendingSync = 0;
    bool placing = false;
};

struct ContainerWidget {
    GtkWidget parent;
    ContainerState state;
};

struct ContainerWidgetClass {
    GtkWidgetClass parent;
};

GtkWidgetClass* parentClass = nullptr;

ContainerState& stateOf(gpointer widget) { return static_cast<ContainerWidget*>(widget)->state; }

GtkWidget* widgetOf(const View& view) {
    return view.nativeIfMade() ? view.nativeIfMade()->widget.get() : nullptr;
}

void syncChildren(GtkWidget* container) {
    ContainerState& state = stateOf(container);
    if (state.pendingSync != 0) {
        g_source_remove(state.pendingSync);
        state.pendingSync = 0;
    }
    if (!state.view) {
        return;
    }

    std::unordered_set<GtkWidget*> wanted;
    for (const auto& subview : state.view->subviews()) {
        wanted.insert(subview->native().widget.get());
    }
    for (GtkWidget* child = gtk_widget_get_first_child(container); child;) {
        GtkWidget* next = gtk_widget_get_next_sibling(child);
        if (!wanted.contains(child)) {
            gtk_widget_unparent(child);
        }
        child = next;
    }
    GtkWidget* previous = nullptr;
    for (const auto& subview : state.view->subviews()) {
        GtkWidget* child = widgetOf(*subview);
        if (gtk_widget_get_parent(child) != container || gtk_widget_get_prev_sibling(child) != previous) {
            gtk_widget_insert_after(child, container, previous);
        }
        previous = child;
    }
}

void measureContainer(GtkWidget* widget, GtkOrientation orientation, int /*forSize*/, int* minimum,
                      int* natural, int* minimumBaseline, int* naturalBaseline) {
    const ContainerState& state = stateOf(widget);
    Extent extent;
    if (state.view) {
        extent = state.layout->measure(orientation == GTK_ORIENTATION_HORIZONTAL ? Orientation::horizontal
                                                                                 : Orientation::vertical);
    }
    *minimum = static_cast<int>(std::ceil(extent.minimum));
    *natural = static_cast<int>(std::ceil(std::max(extent.minimum, extent.natural)));
    *minimumBaseline = -1;
    *naturalBaseline = -1;
}

void allocateContainer(GtkWidget* widget, int width, int height, int /*baseline*/) {
    ContainerState& state = stateOf(widget);
    if (!state.view) {
        return;
    }
    const auto keptAlive = state.view->shared_from_this();
    state.placing = true;
    state.layout->place({static_cast<double>(width), static_cast<double>(height)});
    keptAlive->layout();
    state.placing = false;
    for (const auto& subview : keptAlive->subviews()) {
        GtkWidget* child = widgetOf(*subview);
        if (!child || gtk_widget_get_parent(child) != widget || !gtk_widget_should_layout(child)) {
            continue;
        }
        const Rect frame = subview->frame();
        // The toolkit draws no widget smaller than its minimum: what is too much is cut off by the container.
        int minimumWidth = 0;
        int minimumHeight = 0;
        gtk_widget_measure(child, GTK_ORIENTATION_HORIZONTAL, -1, &minimumWidth, nullptr, nullptr, nullptr);
        gtk_widget_measure(child, GTK_ORIENTATION_VERTICAL, -1, &minimumHeight, nullptr, nullptr, nullptr);
        const GtkAllocation allocation{
            static_cast<int>(std::lround(frame.x)),
            static_cast<int>(std::lround(frame.y)),
            std::max(minimumWidth, static_cast<int>(std::lround(frame.width))),
            std::max(minimumHeight, static_cast<int>(std::lround(frame.height))),
        };
        gtk_widget_size_allocate(child, &allocation, -1);
    }
}

void mapContainer(GtkWidget* widget) {
    syncChildren(widget);
    parentClass->map(widget);
}

void disposeContainer(GObject* object) {
    ContainerState& state = stateOf(object);
    if (state.pendingSync != 0) {
        g_source_remove(state.pendingSync);
        state.pendingSync = 0;
    }
    while (GtkWidget* child = gtk_widget_get_first_child(GTK_WIDGET(object))) {
        gtk_widget_unparent(child);
    }
    G_OBJECT_CLASS(parentClass)->dispose(object);
}

void finalizeContainer(GObject* object) {
    std::destroy_at(&stateOf(object));
    G_OBJECT_CLASS(parentClass)->finalize(object);
}

void initClass(gpointer classPointer, gpointer /*data*/) {
    parentClass = GTK_WIDGET_CLASS(g_type_class_peek_parent(classPointer));
    GtkWidgetClass* widgetClass = GTK_WIDGET_CLASS(classPointer);
    widgetClass->measure = measureContainer;
    widgetClass->size_allocate = allocateContainer;
    widgetClass->map = mapContainer;
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_GROUP);
    GObjectClass* objectClass = G_OBJECT_CLASS(classPointer);
    objectClass->dispose = disposeContainer;
    objectClass->finalize = finalizeContainer;
}

void initInstance(GTypeInstance* instance, gpointer /*class*/) {
    std::construct_at(&stateOf(instance));
    gtk_widget_set_overflow(GTK_WIDGET(instance), GTK_OVERFLOW_HIDDEN);
}

GType containerType() {
    static const GType type =
        g_type_register_static_simple(GTK_TYPE_WIDGET, "KeyloftContainer", sizeof(ContainerWidgetClass),
                                      initClass, sizeof(ContainerWidget), initInstance, GTypeFlags{});
    return type;
}

struct ContainerNative final : View::Native {
    ContainerNative() = default;
    ContainerNative(const ContainerNative&) = delete;
    ContainerNative& operator=(const ContainerNative&) = delete;
    ~ContainerNative() override {
        if (widget) {
            stateOf(widget.get()).view = nullptr;
        }
    }

    void subviewsChanged() override {
        ContainerState& state = stateOf(widget.get());
        if (!gtk_widget_get_mapped(widget.get()) || state.pendingSync != 0) {
            return;
        }
        state.pendingSync = g_idle_add_full(
            G_PRIORITY_HIGH_IDLE,
            [](gpointer data) -> gboolean {
                stateOf(data).pendingSync = 0;
                syncChildren(GTK_WIDGET(data));
                return G_SOURCE_REMOVE;
            },
            widget.get(), nullptr);
        g_source_set_name_by_id(state.pendingSync, "[keyloft] subviews changed");
    }

    void needsLayout() override {
        // Frames that the layout itself sets ask for no further one.
        if (!stateOf(widget.get()).placing) {
            gtk_widget_queue_allocate(widget.get());
        }
    }
};

} // namespace

std::unique_ptr<View::Native> makeContainer(View& view, std::unique_ptr<ContainerLayout> layout) {
    auto native = std::make_unique<ContainerNative>();
    native->widget = GObjectPtr<GtkWidget>::retain(GTK_WIDGET(g_object_new(containerType(), nullptr)));
    ContainerState& state = stateOf(native->widget.get());
    state.view = &view;
    state.layout = std::move(layout);
    return native;
}

Extent FrameLayout::measure(Orientation /*orientation*/) const { return {}; }

void FrameLayout::place(Size size) {
    for (const auto& subview : view_.subviews()) {
        Rect frame = subview->frame();
        if (subview->sizeConstraints().fillsSuperviewWidth) {
            frame.x = 0;
            frame.width = size.width;
        }
        if (subview->sizeConstraints().fillsSuperviewHeight) {
            frame.y = 0;
            frame.height = size.height;
        }
        ViewLayout::setFrame(*subview, frame);
    }
}

Extent ViewLayout::measure(const View& view, Orientation orientation) {
    const View::SizeConstraints& constraints = view.sizeConstraints();
    const auto& fixed = orientation == Orientation::horizontal ? constraints.width : constraints.height;
    if (fixed) {
        return {*fixed, *fixed};
    }
    GtkWidget* widget = widgetOf(view);
    if (!widget) {
        return {};
    }
    int minimum = 0;
    int natural = 0;
    gtk_widget_measure(widget,
                       orientation == Orientation::horizontal ? GTK_ORIENTATION_HORIZONTAL
                                                              : GTK_ORIENTATION_VERTICAL,
                       -1, &minimum, &natural, nullptr, nullptr);
    return {static_cast<double>(minimum), static_cast<double>(natural)};
}

} // namespace Platform
