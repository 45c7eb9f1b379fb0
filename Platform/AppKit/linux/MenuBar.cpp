#include "Platform/AppKit/linux/MenuBar.h"

#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/AppKit/linux/WindowNative.h"
#include "Platform/Foundation/RunLoop.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Platform {

namespace {

constexpr const char* actionPrefix = "menu";
constexpr const char* itemAction = "item";
constexpr const char* windowAction = "window";

std::string actionName(const char* action) { return std::string(actionPrefix) + "." + action; }

/// Returns GTK's name for the item's key equivalent, such as "<Control>braceleft". Adds Shift only for
/// upper-case letters. For other characters, GTK ignores modifiers that the keyboard layout consumes.
std::string accelerator(const MenuItem& item) {
    const guint key = gdk_unicode_to_keyval(g_utf8_get_char(item.keyEquivalent().c_str()));
    unsigned modifiers = GDK_CONTROL_MASK;
    if (item.keyEquivalentModifiers() == ModifierFlags::optionCommand) {
        modifiers |= GDK_ALT_MASK;
    }
    if (!gdk_keyval_is_lower(key)) {
        modifiers |= GDK_SHIFT_MASK;
    }
    const std::unique_ptr<char, decltype(&g_free)> name(
        gtk_accelerator_name(key, static_cast<GdkModifierType>(modifiers)), &g_free);
    return name.get();
}

/// Escapes the underscores in a title, which would otherwise mark mnemonics.
std::string menuLabel(const std::string& title) {
    std::string label;
    for (const char c : title) {
        label += c;
        if (c == '_') {
            label += '_';
        }
    }
    return label;
}

/// Returns the maximum width of a menu's labels, in average character widths. A label may take up two fifths
/// of the screen's width, so that the menu, with margins and key equivalents, takes up at most half of it.
int greatestTextWidth(GtkWidget* widget) {
    GdkDisplay* display = gtk_widget_get_display(widget);
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(gtk_widget_get_root(widget)));
    GdkRectangle screen{};
    gdk_monitor_get_geometry(gdk_display_get_monitor_at_surface(display, surface), &screen);
    const std::unique_ptr<PangoFontMetrics, decltype(&pango_font_metrics_unref)> metrics(
        pango_context_get_metrics(gtk_widget_get_pango_context(widget), nullptr, nullptr),
        &pango_font_metrics_unref);
    const int character = std::max(pango_font_metrics_get_approximate_char_width(metrics.get()),
                                   pango_font_metrics_get_approximate_digit_width(metrics.get()));
    return screen.width * 2 / 5 * PANGO_SCALE / std::max(character, PANGO_SCALE);
}

/// Ellipsizes long labels inside `widget` in the middle. `greatestWidth` is their maximum width.
void cutLongTexts(GtkWidget* widget, int greatestWidth) {
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_LABEL(child)) {
            gtk_label_set_ellipsize(GTK_LABEL(child), PANGO_ELLIPSIZE_MIDDLE);
            gtk_label_set_max_width_chars(GTK_LABEL(child), greatestWidth);
        } else {
            cutLongTexts(child, greatestWidth);
        }
    }
}

void update(Menu& menu) {
    if (const auto delegate = menu.delegate()) {
        delegate->menuNeedsUpdate(menu);
    }
}

void send(const std::shared_ptr<MenuItem>& item) {
    if (const auto action = item->action()) {
        sendAction(*action, nullptr, {.menuItem = item.get()});
    }
}

struct KeyEquivalent {
    std::shared_ptr<Menu> menu;
    std::string key;
    ModifierFlags modifiers = ModifierFlags::command;

    /// Lets the menu's delegate update the items, then returns the item that has this key equivalent.
    std::shared_ptr<MenuItem> item() const {
        update(*menu);
        for (const auto& item : menu->items()) {
            if (item->keyEquivalent() == key && item->keyEquivalentModifiers() == modifiers) {
                return item;
            }
        }
        return nullptr;
    }
};

} // namespace

bool validate(MenuItem& item) {
    const auto action = item.action();
    const auto target = action ? targetForAction(*action) : nullptr;
    return target && target->validateMenuItem(item);
}

MenuBar::MenuBar(GtkWidget* toplevel, const MenuBarSource& source)
    : source_(source)
    , mainMenu_(source.mainMenu)
    , actions_(GObjectPtr<GSimpleActionGroup>::adopt(g_simple_action_group_new())) {
    const auto model = GObjectPtr<GMenu>::adopt(g_menu_new());
    for (const auto& top : mainMenu_->items()) {
        const auto menu = GObjectPtr<GMenu>::adopt(g_menu_new());
        g_menu_append_submenu(model.get(), menuLabel(top->title()).c_str(), G_MENU_MODEL(menu.get()));
    }
    bar_ = GObjectPtr<GtkWidget>::retain(gtk_popover_menu_bar_new_from_model(G_MENU_MODEL(model.get())));
    setAccessibleName(bar_.get(), "Menu bar");
    gtk_widget_insert_action_group(toplevel, actionPrefix, G_ACTION_GROUP(actions_.get()));
    addActions();
    connectPopovers();
    addKeyEquivalents(toplevel, *mainMenu_);
}

MenuBar::~MenuBar() = default;

void MenuBar::connectPopovers() {
    for (GtkWidget* item = gtk_widget_get_first_child(bar_.get()); item;
         item = gtk_widget_get_next_sibling(item)) {
        // Prevent GTK from focusing a menu title when the pointer enters it (seen with 4.8.3, not reported).
        gtk_widget_set_focusable(item, FALSE);
        for (GtkWidget* child = gtk_widget_get_first_child(item); child;
             child = gtk_widget_get_next_sibling(child)) {
            if (GTK_IS_POPOVER(child)) {
                // Rebuild the menu on "map", because GTK maps a popover before it looks for an item to focus.
                connections_.push_back(connectSignal<&MenuBar::opened>(child, "map", *this));
                connections_.push_back(connectSignal<&MenuBar::closed>(child, "closed", *this));
                setAccessibleName(child, mainMenu_->items()[popovers_.size()]->title());
                popovers_.push_back(child);
            }
        }
    }
}

void MenuBar::opened(GtkWidget* popover) {
    const auto index = std::ranges::find(popovers_, popover) - popovers_.begin();
    rebuild(mainMenu_->items()[static_cast<std::size_t>(index)]->submenu(),
            G_MENU(gtk_popover_menu_get_menu_model(GTK_POPOVER_MENU(popover))));
    cutLongTexts(popover, greatestTextWidth(popover));
}

/// Moves the focus back to the page. GTK may leave it in the tab strip (seen with 4.8.3, not reported).
void MenuBar::closed(GtkPopover* /*popover*/) {
    const std::weak_ptr<Window> main = source_.mainWindow();
    // Defer the move, because another menu may open first, or the chosen item's action may move the focus.
    RunLoop::main().perform([main] {
        if (const auto window = main.lock()) {
            window->native().takeFocus();
        }
    });
}

void MenuBar::rebuild(const std::shared_ptr<Menu>& menu, GMenu* model) {
    update(*menu);
    items_ = menu->items();
    g_menu_remove_all(model);

    auto section = GObjectPtr<GMenu>::adopt(g_menu_new());
    const auto endSection = [&] {
        g_menu_append_section(model, nullptr, G_MENU_MODEL(section.get()));
        section = GObjectPtr<GMenu>::adopt(g_menu_new());
    };
    for (std::size_t i = 0; i < items_.size(); ++i) {
        MenuItem& item = *items_[i];
        if (item.isSeparator()) {
            endSection();
            continue;
        }
        // Disable an item by giving it an action that does not exist.
        const bool isEnabled = validate(item);
        const auto native =
            GObjectPtr<GMenuItem>::adopt(g_menu_item_new(menuLabel(item.title()).c_str(), nullptr));
        g_menu_item_set_action_and_target(native.get(), actionName(isEnabled ? itemAction : "none").c_str(),
                                          "i", static_cast<gint32>(i));
        if (!item.keyEquivalent().empty()) {
            g_menu_item_set_attribute(native.get(), "accel", "s", accelerator(item).c_str());
        }
        g_menu_append_item(section.get(), native.get());
    }
    endSection();
    if (menu == source_.windowsMenu.lock()) {
        appendWindows(model);
    }
}

void MenuBar::addActions() {
    const auto item = GObjectPtr<GSimpleAction>::adopt(g_simple_action_new(itemAction, G_VARIANT_TYPE_INT32));
    connections_.push_back(connectSignal<&MenuBar::itemChosen>(item.get(), "activate", *this));
    g_action_map_add_action(G_ACTION_MAP(actions_.get()), G_ACTION(item.get()));
    const auto window = GObjectPtr<GSimpleAction>::adopt(
        g_simple_action_new_stateful(windowAction, G_VARIANT_TYPE_INT32, g_variant_new_int32(-1)));
    connections_.push_back(connectSignal<&MenuBar::windowChosen>(window.get(), "activate", *this));
    g_action_map_add_action(G_ACTION_MAP(actions_.get()), G_ACTION(window.get()));
}

void MenuBar::itemChosen(GSimpleAction* /*action*/, GVariant* index) {
    const auto chosen = static_cast<std::size_t>(g_variant_get_int32(index));
    if (chosen < items_.size()) {
        const auto item = items_[chosen];
        send(item);
    }
}

void MenuBar::windowChosen(GSimpleAction* /*action*/, GVariant* index) {
    const auto chosen = static_cast<std::size_t>(g_variant_get_int32(index));
    const auto window = chosen < windows_.size() ? windows_[chosen].lock() : nullptr;
    if (window) {
        window->makeKeyAndOrderFront();
    }
}

void MenuBar::appendWindows(GMenu* model) {
    const auto mainWindow = source_.mainWindow();
    const auto section = GObjectPtr<GMenu>::adopt(g_menu_new());
    windows_.clear();
    for (const auto& window : source_.windows()) {
        const auto index = static_cast<gint32>(windows_.size());
        if (window == mainWindow) {
            g_action_group_change_action_state(G_ACTION_GROUP(actions_.get()), windowAction,
                                               g_variant_new_int32(index));
        }
        const auto item =
            GObjectPtr<GMenuItem>::adopt(g_menu_item_new(menuLabel(window->title()).c_str(), nullptr));
        g_menu_item_set_action_and_target(item.get(), actionName(windowAction).c_str(), "i", index);
        g_menu_append_item(section.get(), item.get());
        windows_.push_back(window);
    }
    g_menu_append_section(model, nullptr, G_MENU_MODEL(section.get()));
}

void addKeyEquivalents(GtkWidget* toplevel, const Menu& mainMenu) {
    // The key equivalents of editing actions are handled only if the focused field or page does not handle
    // the key. All others are handled before any widget receives the key. Keys of disabled items are
    // discarded.
    GtkEventController* capturing = gtk_shortcut_controller_new();
    gtk_event_controller_set_propagation_phase(capturing, GTK_PHASE_CAPTURE);
    GtkEventController* bubbling = gtk_shortcut_controller_new();
    gtk_event_controller_set_propagation_phase(bubbling, GTK_PHASE_BUBBLE);

    for (const auto& top : mainMenu.items()) {
        update(*top->submenu());
        for (const auto& item : top->submenu()->items()) {
            if (item->keyEquivalent().empty()) {
                continue;
            }
            auto equivalent = std::make_unique<KeyEquivalent>();
            equivalent->menu = top->submenu();
            equivalent->key = item->keyEquivalent();
            equivalent->modifiers = item->keyEquivalentModifiers();
            GtkShortcutAction* action = gtk_callback_action_new(
                [](GtkWidget* /*widget*/, GVariant* /*arguments*/, gpointer data) -> gboolean {
                    const auto item = static_cast<KeyEquivalent*>(data)->item();
                    if (item && validate(*item)) {
                        send(item);
                    }
                    return TRUE;
                },
                equivalent.release(),
                [](gpointer data) {
                    const std::unique_ptr<KeyEquivalent> owned(static_cast<KeyEquivalent*>(data));
                });
            GtkShortcutTrigger* trigger = gtk_shortcut_trigger_parse_string(accelerator(*item).c_str());
            const auto itsAction = item->action();
            gtk_shortcut_controller_add_shortcut(
                GTK_SHORTCUT_CONTROLLER(itsAction && isEditing(*itsAction) ? bubbling : capturing),
                gtk_shortcut_new(trigger, action));
        }
    }
    gtk_widget_add_controller(toplevel, capturing);
    gtk_widget_add_controller(toplevel, bubbling);
}

} // namespace Platform
