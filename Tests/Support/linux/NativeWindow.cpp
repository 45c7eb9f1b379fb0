#include "Tests/Support/NativeWindow.h"

#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Platform/AppKit/linux/TabHost.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/AppKit/linux/WindowNative.h"
#include "Platform/WebKit/linux/NetworkSession.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/linux/MainLoop.h"
#include "Tests/Support/linux/Xdotool.h"

#include <adwaita.h>
#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <utility>

// Included last because it defines macros with common names.
// clang-format off
#include <gdk/x11/gdkx.h>
// clang-format on

namespace TestSupport {

using Platform::GObjectPtr;
using Platform::TabHost;

namespace {

/// Timeout for GTK to complete an action.
constexpr auto limit = std::chrono::seconds(10);

TabHost& hostOf(Platform::Window& window) {
    const auto host = TabHost::of(window);
    if (!host) {
        throw std::logic_error("the window is not shown");
    }
    return *host;
}

GtkWidget* toplevelOf(Platform::Window& window) { return GTK_WIDGET(hostOf(window).toplevel()); }

GtkWidget* pageOf(Platform::Window& window) { return window.native().page.get(); }

GtkWidget* widgetOf(Platform::View& view) { return view.native().widget.get(); }

Platform::Rect boundsIn(GtkWidget* widget, GtkWidget* outer) {
    graphene_rect_t bounds;
    if (gtk_widget_compute_bounds(widget, outer, &bounds) == FALSE) {
        throw std::logic_error("the view is not in the window");
    }
    return {
        .x = bounds.origin.x, .y = bounds.origin.y, .width = bounds.size.width, .height = bounds.size.height};
}

/// Calls `found` for each descendant of `widget`, parents before children. Skips the descendants of a widget
/// for which `found` returns false.
void walk(GtkWidget* widget, const std::function<bool(GtkWidget*)>& found) {
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
         child = gtk_widget_get_next_sibling(child)) {
        if (found(child)) {
            walk(child, found);
        }
    }
}

/// Returns the first descendant of `widget` for which `wanted` returns true, or null.
GtkWidget* find(GtkWidget* widget, const std::function<bool(GtkWidget*)>& wanted) {
    GtkWidget* result = nullptr;
    walk(widget, [&](GtkWidget* child) {
        if (result == nullptr && wanted(child)) {
            result = child;
        }
        return result == nullptr;
    });
    return result;
}

GtkWidget* tabStripOf(Platform::Window& window) {
    return find(toplevelOf(window), [](GtkWidget* widget) { return ADW_IS_TAB_BAR(widget); });
}

GtkWidget* sheetOf(Platform::Window& window) {
    return find(pageOf(window), [](GtkWidget* widget) {
        return gtk_accessible_get_accessible_role(GTK_ACCESSIBLE(widget)) == GTK_ACCESSIBLE_ROLE_ALERT_DIALOG;
    });
}

std::vector<GtkButton*> buttonsOf(GtkWidget* sheet) {
    std::vector<GtkButton*> buttons;
    walk(sheet, [&](GtkWidget* widget) {
        if (!GTK_IS_BUTTON(widget)) {
            return true;
        }
        buttons.push_back(GTK_BUTTON(widget));
        return false;
    });
    // The default button is at the trailing end, but must be first in the result.
    return {buttons.rbegin(), buttons.rend()};
}

/// Returns a button of the window's sheet. If there is no such button, fails the test and returns null.
GtkWidget* sheetButton(Platform::Window& window, const std::string& title) {
    GtkWidget* sheet = sheetOf(window);
    if (sheet != nullptr) {
        for (GtkButton* button : buttonsOf(sheet)) {
            if (gtk_button_get_label(button) == title) {
                return GTK_WIDGET(button);
            }
        }
    }
    ADD_FAILURE() << (sheet == nullptr ? "no sheet" : "no button " + title);
    return nullptr;
}

ScreenPoint middleOnScreen(GtkWidget* widget) {
    GtkNative* native = gtk_widget_get_native(widget);
    const auto bounds = boundsIn(widget, GTK_WIDGET(native));
    double surfaceX = 0;
    double surfaceY = 0;
    gtk_native_get_surface_transform(native, &surfaceX, &surfaceY);
    Display* display = gdk_x11_display_get_xdisplay(gtk_widget_get_display(widget));
    int x = 0;
    int y = 0;
    ::Window child = 0;
    XTranslateCoordinates(display, gdk_x11_surface_get_xid(gtk_native_get_surface(native)),
                          DefaultRootWindow(display),
                          static_cast<int>(surfaceX + bounds.x + (bounds.width / 2)),
                          static_cast<int>(surfaceY + bounds.y + (bounds.height / 2)), &x, &y, &child);
    return {.x = x, .y = y};
}

GtkWidget* tabOf(Platform::Window& window) {
    const AdwTabPage* page = adw_tab_view_get_page(hostOf(window).tabView(), pageOf(window));
    GtkWidget* tab = find(tabStripOf(window), [page](GtkWidget* widget) {
        if (std::string_view(G_OBJECT_TYPE_NAME(widget)) != "AdwTab") {
            return false;
        }
        AdwTabPage* shown = nullptr;
        g_object_get(widget, "page", &shown, nullptr);
        const auto held = GObjectPtr<AdwTabPage>::adopt(shown);
        return shown == page;
    });
    if (tab == nullptr) {
        throw std::logic_error("the window has no tab in the strip");
    }
    return tab;
}

void movePointer(ScreenPoint point) {
    runXdotool({"mousemove", std::to_string(point.x), std::to_string(point.y)});
}

void redirectTraffic(WebKitNetworkSession* session, int port) {
    static constexpr const char* here[] = {"127.0.0.1", "localhost", nullptr};
    const std::string proxy = "http://127.0.0.1:" + std::to_string(port);
    WebKitNetworkProxySettings* settings = webkit_network_proxy_settings_new(proxy.c_str(), here);
    webkit_network_session_set_proxy_settings(session, WEBKIT_NETWORK_PROXY_MODE_CUSTOM, settings);
    webkit_network_proxy_settings_free(settings);
}

GtkWidget* labelOf(GtkWidget* widget) {
    return find(widget, [](GtkWidget* child) { return GTK_IS_LABEL(child); });
}

std::string titleOf(GtkWidget* item) { return gtk_label_get_text(GTK_LABEL(labelOf(item))); }

bool isMenuBarItem(GtkWidget* widget) {
    return std::string_view(G_OBJECT_TYPE_NAME(widget)) == "GtkPopoverMenuBarItem";
}

bool isMenuItem(GtkWidget* widget) {
    return std::string_view(G_OBJECT_TYPE_NAME(widget)) == "GtkModelButton";
}

GtkWidget* menuBarItem(Platform::Window& window, const std::string& title) {
    GtkWidget* item = find(toplevelOf(window), [&title](GtkWidget* widget) {
        return isMenuBarItem(widget) && titleOf(widget) == title;
    });
    if (item == nullptr) {
        throw std::logic_error("no menu " + title);
    }
    return item;
}

GtkWidget* popoverOf(GtkWidget* menuBarItem) {
    return find(menuBarItem, [](GtkWidget* widget) { return GTK_IS_POPOVER(widget); });
}

/// A key in the current keyboard layout, and the shift level at which it types a given character.
struct Key {
    guint code = 0;
    int level = 0;
};

Key keyOf(guint keyval) {
    GdkKeymapKey* found = nullptr;
    int count = 0;
    if (gdk_display_map_keyval(gdk_display_get_default(), keyval, &found, &count) == FALSE) {
        throw std::logic_error(std::string("no key for ") + gdk_keyval_name(keyval));
    }
    const std::unique_ptr<GdkKeymapKey, decltype(&g_free)> keys(found, &g_free);
    return {.code = found[0].keycode, .level = found[0].level};
}

GtkText* textOf(Platform::TextField& field) {
    return GTK_TEXT(gtk_editable_get_delegate(GTK_EDITABLE(widgetOf(field))));
}

} // namespace

void waitForLayout(Platform::Window& window) {
    EXPECT_TRUE(runUntil([&] { return gtk_widget_get_mapped(pageOf(window)) == TRUE; }, limit))
        << "not shown";
    runPending();
    GdkFrameClock* clock = gtk_widget_get_frame_clock(pageOf(window));
    bool isDrawn = false;
    const Platform::SignalConnection drawn(
        clock, "after-paint",
        G_CALLBACK(+[](GdkFrameClock* /*clock*/, gpointer data) { *static_cast<bool*>(data) = true; }),
        &isDrawn);
    gtk_widget_queue_draw(pageOf(window));
    gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_PAINT);
    EXPECT_TRUE(runUntil([&] { return isDrawn; }, limit)) << "not drawn";
}

Platform::Rect contentFrame(Platform::Window& window) { return boundsIn(pageOf(window), toplevelOf(window)); }

Platform::Size nativeWindowSize(Platform::Window& window) {
    GtkWidget* toplevel = toplevelOf(window);
    return {.width = static_cast<double>(gtk_widget_get_width(toplevel)),
            .height = static_cast<double>(gtk_widget_get_height(toplevel))};
}

Platform::Rect boundsInContent(Platform::View& view) {
    return boundsIn(widgetOf(view), pageOf(*view.window()));
}

bool isShown(Platform::View& view) {
    return view.nativeIfMade() != nullptr && gtk_widget_get_mapped(widgetOf(view)) == TRUE;
}

bool resizeContent(Platform::Window& window, Platform::Size size) {
    waitForLayout(window);
    const auto least = leastContentSize(window);
    const Platform::Size got{.width = std::max(size.width, least.width),
                             .height = std::max(size.height, least.height)};
    Platform::Size asked;
    const bool isDone = runUntil(
        [&] {
            const auto whole = nativeWindowSize(window);
            const auto content = contentFrame(window);
            if (content.width == got.width && content.height == got.height) {
                return true;
            }
            // Compute the size in each iteration, because the widgets above the content may change their
            // height.
            const Platform::Size wanted{.width = whole.width - content.width + size.width,
                                        .height = whole.height - content.height + size.height};
            if (asked != wanted) {
                asked = wanted;
                gtk_window_set_default_size(GTK_WINDOW(toplevelOf(window)), static_cast<int>(wanted.width),
                                            static_cast<int>(wanted.height));
            }
            return false;
        },
        limit);
    EXPECT_TRUE(isDone) << "the window has neither the requested nor the minimum size";
    waitForLayout(window);
    return isDone && got == size;
}

Platform::Size leastContentSize(Platform::Window& window) {
    int width = 0;
    int height = 0;
    gtk_widget_measure(pageOf(window), GTK_ORIENTATION_HORIZONTAL, -1, &width, nullptr, nullptr, nullptr);
    gtk_widget_measure(pageOf(window), GTK_ORIENTATION_VERTICAL, -1, &height, nullptr, nullptr, nullptr);
    return {.width = static_cast<double>(width), .height = static_cast<double>(height)};
}

void forgetWindowFrames() {
    Platform::Application::shared().native().hosts.frames.reset();
    std::filesystem::remove_all(g_get_user_state_dir());
}

std::string nativeTitle(Platform::Window& window) {
    return gtk_window_get_title(GTK_WINDOW(toplevelOf(window)));
}

bool shareNativeWindow(Platform::Window& one, Platform::Window& other) {
    return TabHost::of(one) && TabHost::of(one) == TabHost::of(other);
}

std::vector<std::string> tabTitles(Platform::Window& window) {
    AdwTabView* view = hostOf(window).tabView();
    std::vector<std::string> titles;
    for (int i = 0; i < adw_tab_view_get_n_pages(view); ++i) {
        titles.emplace_back(adw_tab_page_get_title(adw_tab_view_get_nth_page(view, i)));
    }
    return titles;
}

bool isTabStripShown(Platform::Window& window) {
    return adw_tab_bar_get_tabs_revealed(ADW_TAB_BAR(tabStripOf(window))) == TRUE;
}

bool isSelectedTab(Platform::Window& window) { return hostOf(window).selectedWindow().get() == &window; }

bool needsAttention(Platform::Window& window) {
    AdwTabView* view = hostOf(window).tabView();
    return adw_tab_page_get_needs_attention(adw_tab_view_get_page(view, pageOf(window))) == TRUE;
}

void selectTab(Platform::Window& window) {
    AdwTabView* view = hostOf(window).tabView();
    adw_tab_view_set_selected_page(view, adw_tab_view_get_page(view, pageOf(window)));
}

void closeTab(Platform::Window& window) {
    AdwTabView* view = hostOf(window).tabView();
    adw_tab_view_close_page(view, adw_tab_view_get_page(view, pageOf(window)));
}

void closeNativeWindow(Platform::Window& window) { gtk_window_close(GTK_WINDOW(toplevelOf(window))); }

void clickNewTabButton(Platform::Window& window) {
    g_signal_emit_by_name(adw_tab_bar_get_end_action_widget(ADW_TAB_BAR(tabStripOf(window))), "clicked");
}

bool frameHintsAllowMinimizing(Platform::Window& window) {
    constexpr unsigned long all = 1;
    constexpr unsigned long minimize = 8;
    constexpr unsigned long minimizeButton = 32;
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(toplevelOf(window)));
    GdkDisplay* display = gdk_surface_get_display(surface);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(gdk_x11_display_get_xdisplay(display), gdk_x11_surface_get_xid(surface),
                       gdk_x11_get_xatom_by_name_for_display(display, "_MOTIF_WM_HINTS"), 0, 5, False,
                       AnyPropertyType, &type, &format, &count, &rest, &data);
    const std::unique_ptr<unsigned char, int (*)(void*)> owned(data, &XFree);
    if (count < 3 || format != 32) {
        return true;
    }
    // The first three words of _MOTIF_WM_HINTS are flags, functions and decorations.
    const auto* hints = reinterpret_cast<const unsigned long*>(data);
    const bool function = (hints[0] & 1) == 0 || (hints[1] & (all | minimize)) != 0;
    const bool button = (hints[0] & 2) == 0 || (hints[2] & (all | minimizeButton)) != 0;
    return function || button;
}

std::string activeTitle() {
    GListModel* toplevels = gtk_window_get_toplevels();
    for (guint i = 0; i < g_list_model_get_n_items(toplevels); ++i) {
        const auto window = GObjectPtr<GtkWindow>::adopt(GTK_WINDOW(g_list_model_get_item(toplevels, i)));
        const char* title = gtk_window_get_title(window.get());
        if (gtk_window_is_active(window.get()) == TRUE && title != nullptr) {
            return title;
        }
    }
    return {};
}

bool isActive(Platform::Window& window) {
    return gtk_window_is_active(GTK_WINDOW(toplevelOf(window))) == TRUE;
}

void activate(Platform::Window& window) {
    startWindowManager();
    gtk_window_present(GTK_WINDOW(toplevelOf(window)));
    EXPECT_TRUE(runUntil([&] { return isActive(window); }, limit)) << "not active";
    waitForLayout(window);
}

struct OtherWindow::Native {
    GObjectPtr<GtkWidget> window = GObjectPtr<GtkWidget>::retain(gtk_window_new());
};

OtherWindow::OtherWindow()
    : native_(std::make_unique<Native>()) {
    startWindowManager();
    GtkWindow* window = GTK_WINDOW(native_->window.get());
    gtk_window_set_default_size(window, 300, 200);
    gtk_window_present(window);
    EXPECT_TRUE(runUntil([&] { return gtk_window_is_active(window) == TRUE; }, limit)) << "not active";
}

OtherWindow::~OtherWindow() { gtk_window_destroy(GTK_WINDOW(native_->window.get())); }

void pressKey(const std::string& key) { runXdotool({"key", key}); }

void typeText(const std::string& text) { runXdotool({"type", "--delay", "2", text}); }

void click(Platform::View& view) { clickAt(middleOnScreen(widgetOf(view))); }

ScreenPoint tabOnScreen(Platform::Window& window) { return middleOnScreen(tabOf(window)); }

ScreenPoint tabCloseButtonOnScreen(Platform::Window& window) {
    GtkWidget* button = find(tabOf(window), [](GtkWidget* widget) {
        return GTK_IS_BUTTON(widget) && gtk_widget_has_css_class(widget, "tab-close-button") == TRUE;
    });
    if (button == nullptr) {
        throw std::logic_error("the tab has no button");
    }
    return middleOnScreen(button);
}

ScreenPoint newTabButtonOnScreen(Platform::Window& window) {
    return middleOnScreen(adw_tab_bar_get_end_action_widget(ADW_TAB_BAR(tabStripOf(window))));
}

void clickAt(ScreenPoint point, PointerButton button) {
    movePointer(point);
    runXdotool({"click", std::to_string(static_cast<int>(button))});
}

void drag(ScreenPoint from, ScreenPoint to) {
    constexpr int steps = 25;
    movePointer(from);
    runXdotool({"mousedown", "1"});
    for (int i = 1; i <= steps; ++i) {
        movePointer(
            {.x = from.x + ((to.x - from.x) * i / steps), .y = from.y + ((to.y - from.y) * i / steps)});
        runPending();
    }
    // Give the drop target under the pointer time to accept the drag.
    constexpr auto pause = std::chrono::milliseconds(200);
    EXPECT_FALSE(runUntil([] { return false; }, pause));
    runXdotool({"mouseup", "1"});
}

ShownMenu openedMenu(Platform::Window& window, const std::string& title) {
    GtkWidget* popover = popoverOf(menuBarItem(window, title));
    gtk_popover_popup(GTK_POPOVER(popover));
    EXPECT_TRUE(runUntil([&] { return isMenuOpen(window, title); }, limit));
    waitForLayout(window);

    ShownMenu menu;
    menu.width = gtk_widget_get_width(popover);
    walk(popover, [&menu](GtkWidget* widget) {
        const bool isItem = isMenuItem(widget);
        if (isItem) {
            GtkWidget* label = labelOf(widget);
            menu.titles.emplace_back(gtk_label_get_text(GTK_LABEL(label)));
            menu.isCut.push_back(pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(label))) == TRUE);
        }
        return !isItem;
    });
    gtk_popover_popdown(GTK_POPOVER(popover));
    runPending();
    return menu;
}

std::vector<std::string> menuTitles(Platform::Window& window) {
    std::vector<std::string> titles;
    walk(toplevelOf(window), [&titles](GtkWidget* widget) {
        if (!isMenuBarItem(widget)) {
            return true;
        }
        titles.push_back(titleOf(widget));
        return false;
    });
    return titles;
}

bool isMenuOpen(Platform::Window& window, const std::string& title) {
    GtkWidget* popover = popoverOf(menuBarItem(window, title));
    return gtk_widget_get_mapped(popover) == TRUE && gtk_widget_get_width(popover) > 0;
}

ScreenPoint menuTitleOnScreen(Platform::Window& window, const std::string& title) {
    return middleOnScreen(menuBarItem(window, title));
}

void chooseFromMenu(Platform::Window& window, const std::string& title, const std::string& item) {
    // GTK 4.8.3 sometimes ignores a click on a title shortly after a menu was closed (not reported).
    constexpr int clicks = 3;
    for (int i = 0; i < clicks && !isMenuOpen(window, title); ++i) {
        clickAt(menuTitleOnScreen(window, title));
        static_cast<void>(runUntil([&] { return isMenuOpen(window, title); }, std::chrono::seconds(2)));
    }
    ASSERT_TRUE(isMenuOpen(window, title)) << title;
    waitForLayout(window);
    GtkWidget* button = find(popoverOf(menuBarItem(window, title)), [&item](GtkWidget* widget) {
        return isMenuItem(widget) && titleOf(widget) == item;
    });
    ASSERT_NE(button, nullptr) << item;
    clickAt(middleOnScreen(button));
    EXPECT_TRUE(runUntil([&] { return !isMenuOpen(window, title); }, limit)) << item;
}

KeyboardLayout::KeyboardLayout(const std::string& name, unsigned keycodeOfZ) {
    runProgram({"setxkbmap", name});
    EXPECT_TRUE(runUntil([keycodeOfZ] { return keyOf(GDK_KEY_z).code == keycodeOfZ; }, limit))
        << "the layout did not become " << name;
}

KeyboardLayout::~KeyboardLayout() { runProgram({"setxkbmap", "us"}); }

void pressKeyEquivalent(const Platform::MenuItem& item) {
    const Key key = keyOf(gdk_unicode_to_keyval(g_utf8_get_char(item.keyEquivalent().c_str())));
    std::vector<guint> codes = {keyOf(GDK_KEY_Control_L).code};
    if (item.keyEquivalentModifiers() == Platform::ModifierFlags::optionCommand) {
        codes.push_back(keyOf(GDK_KEY_Alt_L).code);
    }
    if ((key.level & 1) != 0) {
        codes.push_back(keyOf(GDK_KEY_Shift_L).code);
    }
    if ((key.level & 2) != 0) {
        codes.push_back(keyOf(GDK_KEY_ISO_Level3_Shift).code);
    }
    codes.push_back(key.code);
    std::string keys;
    for (const guint code : codes) {
        keys += (keys.empty() ? "" : "+") + std::to_string(code);
    }
    pressKey(keys);
}

Platform::Size screenSize() {
    const auto monitor = GObjectPtr<GdkMonitor>::adopt(
        GDK_MONITOR(g_list_model_get_item(gdk_display_get_monitors(gdk_display_get_default()), 0)));
    GdkRectangle screen{};
    gdk_monitor_get_geometry(monitor.get(), &screen);
    return {.width = static_cast<double>(screen.width), .height = static_cast<double>(screen.height)};
}

bool hasFocus(Platform::View& view) {
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(toplevelOf(*view.window())));
    return focus != nullptr && view.nativeIfMade() != nullptr &&
           (focus == widgetOf(view) || gtk_widget_is_ancestor(focus, widgetOf(view)) == TRUE);
}

std::string selectedText(Platform::TextField& field) {
    int begin = 0;
    int end = 0;
    if (gtk_editable_get_selection_bounds(GTK_EDITABLE(textOf(field)), &begin, &end) == FALSE) {
        return {};
    }
    g_autofree char* text = gtk_editable_get_chars(GTK_EDITABLE(textOf(field)), begin, end);
    return text;
}

std::string shownText(Platform::TextField& field) {
    return gtk_editable_get_text(GTK_EDITABLE(textOf(field)));
}

std::optional<ShownSheet> shownSheet(Platform::Window& window) {
    GtkWidget* sheet = sheetOf(window);
    if (sheet == nullptr) {
        return std::nullopt;
    }
    ShownSheet shown;
    walk(sheet, [&](GtkWidget* widget) {
        if (GTK_IS_LABEL(widget)) {
            shown.texts.emplace_back(gtk_label_get_text(GTK_LABEL(widget)));
        }
        return !GTK_IS_BUTTON(widget);
    });
    for (GtkButton* button : buttonsOf(sheet)) {
        shown.buttons.emplace_back(gtk_button_get_label(button));
    }
    return shown;
}

void pressSheetButton(Platform::Window& window, const std::string& title) {
    if (GtkWidget* button = sheetButton(window, title)) {
        g_signal_emit_by_name(button, "clicked");
    }
}

void clickSheetButton(Platform::Window& window, const std::string& title) {
    waitForLayout(window);
    if (GtkWidget* button = sheetButton(window, title)) {
        clickAt(middleOnScreen(button));
    }
}

Platform::Rect sheetButtonFrame(Platform::Window& window, const std::string& title) {
    GtkWidget* button = sheetButton(window, title);
    return button != nullptr ? boundsIn(button, pageOf(window)) : Platform::Rect{};
}

bool showsFocus(Platform::View& view) {
    return hasFocus(view) && gtk_window_get_focus_visible(GTK_WINDOW(toplevelOf(*view.window()))) == TRUE;
}

void hideFocus(Platform::Window& window) {
    gtk_window_set_focus_visible(GTK_WINDOW(toplevelOf(window)), FALSE);
}

bool hasSheetFocus(Platform::Window& window) {
    GtkWidget* sheet = sheetOf(window);
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(toplevelOf(window)));
    return sheet != nullptr && focus != nullptr && gtk_widget_is_ancestor(focus, sheet) == TRUE;
}

std::weak_ptr<void> nativeLifetime(Platform::View& view) {
    auto life = std::make_unique<std::shared_ptr<void>>(std::make_shared<char>());
    std::weak_ptr<void> lifetime = *life;
    g_object_weak_ref(
        G_OBJECT(widgetOf(view)),
        [](gpointer data, GObject* /*ended*/) {
            const std::unique_ptr<std::shared_ptr<void>> owned(static_cast<std::shared_ptr<void>*>(data));
        },
        life.release());
    return lifetime;
}

bool allowsSwipes(Platform::WebView& view) {
    return webkit_settings_get_enable_back_forward_navigation_gestures(
               webkit_web_view_get_settings(WEBKIT_WEB_VIEW(widgetOf(view)))) == TRUE;
}

void runScript(Platform::WebView& view, const std::string& script) {
    webkit_web_view_evaluate_javascript(WEBKIT_WEB_VIEW(widgetOf(view)), script.c_str(), -1, nullptr, nullptr,
                                        nullptr, nullptr, nullptr);
}

bool killWebProcesses(Platform::WebView& view, const std::vector<pid_t>& processes) {
    bool isTold = false;
    // Connected after the view's own handler, so the view has been notified when this handler is called.
    const Platform::SignalConnection connection(
        widgetOf(view), "web-process-terminated",
        G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason, gpointer told) {
            *static_cast<bool*>(told) = true;
        }),
        &isTold);
    // Reject process ID 0, with which `kill` would signal the test's own process group.
    return std::ranges::all_of(processes,
                               [](pid_t process) { return process > 0 && ::kill(process, SIGKILL) == 0; }) &&
           runUntil([&] { return isTold; });
}

void redirectTraffic(Platform::WebView& view, int port) {
    redirectTraffic(webkit_web_view_get_network_session(WEBKIT_WEB_VIEW(widgetOf(view))), port);
}

TrafficRedirection::TrafficRedirection(int port) {
    redirectTraffic(Platform::networkSession(Platform::WebsiteDataStore::defaultStore).get(), port);
}

TrafficRedirection::~TrafficRedirection() {
    webkit_network_session_set_proxy_settings(
        Platform::networkSession(Platform::WebsiteDataStore::defaultStore).get(),
        WEBKIT_NETWORK_PROXY_MODE_DEFAULT, nullptr);
}

} // namespace TestSupport
