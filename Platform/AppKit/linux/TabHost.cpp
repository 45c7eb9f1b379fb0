#include "Platform/AppKit/linux/TabHost.h"

#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Platform/AppKit/linux/Minimizing.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/TabAccessibility.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/AppKit/linux/WindowNative.h"
#include "Platform/Foundation/MakeShared.h"

#include <algorithm>

namespace Platform {

namespace {

GQuark hostQuark() {
    static const GQuark quark = g_quark_from_static_string("keyloft-host");
    return quark;
}

} // namespace

std::shared_ptr<TabHost> TabHost::create() {
    auto host = makeShared<TabHost>();
    host->connect();
    Application::shared().native().hosts.push_back(host);
    return host;
}

std::shared_ptr<TabHost> TabHost::of(Window& window) {
    GtkWidget* page = window.native().page.get();
    GtkRoot* root = page ? gtk_widget_get_root(page) : nullptr;
    auto* host = root ? static_cast<TabHost*>(g_object_get_qdata(G_OBJECT(root), hostQuark())) : nullptr;
    return host ? host->shared_from_this() : nullptr;
}

template <auto handler>
void TabHost::connect(gpointer instance, const char* signal) {
    connections_.push_back(connectSignal<handler>(instance, signal, *this));
}

TabHost::TabHost()
    : toplevel_(GObjectPtr<GtkWidget>::retain(gtk_window_new()))
    , returnedKeys_(toplevel())
    , tabView_(adw_tab_view_new()) {
    const Application::Native& application = Application::shared().native();
    gtk_window_set_application(toplevel(), application.gtk());
    g_object_set_qdata(G_OBJECT(toplevel()), hostQuark(), this);

    GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    if (application.mainMenu) {
        menuBar_ = std::make_unique<MenuBar>(toplevel_.get(), application.mainMenu);
        gtk_box_append(GTK_BOX(column), menuBar_->widget());
    }

    AdwTabBar* tabBar = adw_tab_bar_new();
    GtkWidget* newTab = gtk_button_new_from_icon_name("tab-new-symbolic");
    gtk_widget_add_css_class(newTab, "flat");
    gtk_widget_set_tooltip_text(newTab, "New Tab");
    setAccessibleName(newTab, "New Tab");
    connect<&TabHost::newTabClicked>(newTab, "clicked");
    adw_tab_bar_set_end_action_widget(tabBar, newTab);
    adw_tab_bar_set_view(tabBar, tabView_);
    describeTabs(tabBar);
    gtk_box_append(GTK_BOX(column), GTK_WIDGET(tabBar));

    // AdwTabView handles its shortcuts before the page receives the keys. Enable only these two and leave all
    // other keys to the page.
    adw_tab_view_set_shortcuts(tabView_,
                               static_cast<AdwTabViewShortcuts>(ADW_TAB_VIEW_SHORTCUT_CONTROL_TAB |
                                                                ADW_TAB_VIEW_SHORTCUT_CONTROL_SHIFT_TAB));
    gtk_widget_set_vexpand(GTK_WIDGET(tabView_), TRUE);
    gtk_box_append(GTK_BOX(column), GTK_WIDGET(tabView_));
    gtk_window_set_child(toplevel(), column);
}

TabHost::~TabHost() {
    connections_.clear();
    g_object_set_qdata(G_OBJECT(toplevel()), hostQuark(), nullptr);
    gtk_window_destroy(toplevel());
}

void TabHost::connect() {
    connect<&TabHost::closeRequested>(toplevel_.get(), "close-request");
    connect<&TabHost::focusChanged>(toplevel_.get(), "notify::focus-widget");
    connect<&TabHost::activeChanged>(toplevel_.get(), "notify::is-active");
    for (const char* property : {"notify::default-width", "notify::default-height", "notify::maximized"}) {
        connect<&TabHost::frameChanged>(toplevel_.get(), property);
    }
    connect<&TabHost::closePageRequested>(tabView_, "close-page");
    connect<&TabHost::pageCountChanged>(tabView_, "notify::n-pages");
    connect<&TabHost::selectionChanged>(tabView_, "notify::selected-page");
    connect<&TabHost::windowWanted>(tabView_, "create-window");
}

void TabHost::setFrame(const Window& window) {
    gtk_window_set_resizable(toplevel(), window.style().resizable);
    if (!window.style().miniaturizable) {
        withholdMinimizing(toplevel());
    }
    int barHeight = 0;
    if (menuBar_) {
        gtk_widget_measure(menuBar_->widget(), GTK_ORIENTATION_VERTICAL, -1, nullptr, &barHeight, nullptr,
                           nullptr);
    }
    SavedFrame frame{.width = static_cast<int>(window.contentSize().width),
                     .height = static_cast<int>(window.contentSize().height) + barHeight};
    if (const auto saved = Application::shared().native().savedFrames().frame(window.frameAutosaveName())) {
        // No upper limit is needed, because GTK fits the window to the screen.
        frame = *saved;
        frame.width = std::max(frame.width, static_cast<int>(window.minSize().width));
        frame.height = std::max(frame.height, static_cast<int>(window.minSize().height) + barHeight);
    }
    gtk_window_set_default_size(toplevel(), frame.width, frame.height);
    if (frame.isMaximized) {
        gtk_window_maximize(toplevel());
    }
}

void TabHost::addPage(Window& window, Window* neighbour) {
    GtkWidget* page = window.native().page.get();
    int position = adw_tab_view_get_n_pages(tabView_);
    if (neighbour) {
        AdwTabPage* beside = adw_tab_view_get_page(tabView_, neighbour->native().page.get());
        position = adw_tab_view_get_page_position(tabView_, beside) + 1;
    }
    adw_tab_view_insert(tabView_, page, position);
    updateTitle(window);
}

void TabHost::select(Window& window) {
    adw_tab_view_set_selected_page(tabView_, adw_tab_view_get_page(tabView_, window.native().page.get()));
}

void TabHost::closePage(Window& window) {
    adw_tab_view_close_page(tabView_, adw_tab_view_get_page(tabView_, window.native().page.get()));
}

void TabHost::updateTitle(Window& window) {
    AdwTabPage* page = adw_tab_view_get_page(tabView_, window.native().page.get());
    // A tab without a tool tip shows its whole title as the tool tip, regardless of the length.
    const std::string shown = toolTipText(window.title());
    if (shown == window.title()) {
        adw_tab_page_set_tooltip(page, "");
    } else {
        const std::unique_ptr<char, decltype(&g_free)> toolTip(g_markup_escape_text(shown.c_str(), -1),
                                                               &g_free);
        adw_tab_page_set_tooltip(page, toolTip.get());
    }
    adw_tab_page_set_title(page, window.title().c_str());
    if (adw_tab_view_get_selected_page(tabView_) == page) {
        gtk_window_set_title(toplevel(), window.title().c_str());
    }
}

void TabHost::setNeedsAttention(Window& window, bool needs) {
    AdwTabPage* page = adw_tab_view_get_page(tabView_, window.native().page.get());
    adw_tab_page_set_needs_attention(page, needs && adw_tab_view_get_selected_page(tabView_) != page);
}

std::shared_ptr<Window> TabHost::selectedWindow() const {
    AdwTabPage* page = adw_tab_view_get_selected_page(tabView_);
    return page ? Window::Native::ofPage(adw_tab_page_get_child(page)) : nullptr;
}

std::vector<std::shared_ptr<Window>> TabHost::windows() const {
    std::vector<std::shared_ptr<Window>> windows;
    for (int i = 0; i < adw_tab_view_get_n_pages(tabView_); ++i) {
        if (auto window =
                Window::Native::ofPage(adw_tab_page_get_child(adw_tab_view_get_nth_page(tabView_, i)))) {
            windows.push_back(std::move(window));
        }
    }
    return windows;
}

void TabHost::selectNeighbour(int step) {
    const int count = adw_tab_view_get_n_pages(tabView_);
    AdwTabPage* selected = adw_tab_view_get_selected_page(tabView_);
    if (!selected) {
        return;
    }
    const int position = adw_tab_view_get_page_position(tabView_, selected);
    adw_tab_view_set_selected_page(tabView_,
                                   adw_tab_view_get_nth_page(tabView_, (position + step + count) % count));
}

void TabHost::present() {
    wasUsed();
    gtk_window_present(toplevel());
    // Flush the request, so that the window manager can work while this process prepares the page's first
    // load.
    gdk_display_flush(gtk_widget_get_display(toplevel_.get()));
}

void TabHost::wasUsed() {
    static std::uint64_t uses = 0;
    lastUse_ = ++uses;
}

void TabHost::orderOut() { gtk_widget_set_visible(toplevel_.get(), FALSE); }

gboolean TabHost::closeRequested(GtkWindow* /*toplevel*/) {
    // Hide the window first. Otherwise each tab is shown briefly when the tab before it closes.
    gtk_widget_set_visible(toplevel_.get(), FALSE);
    // GTK's default handler removes the pages without emitting `close-page`. Close the tabs one at a time, in
    // order.
    for (const auto& window : windows()) {
        if (of(*window).get() == this) {
            closePage(*window);
        }
    }
    return GDK_EVENT_STOP;
}

gboolean TabHost::closePageRequested(AdwTabView* view, AdwTabPage* page) {
    const auto window = Window::Native::ofPage(adw_tab_page_get_child(page));
    const bool closes = !window || window->isReleasedWhenClosed();
    if (window && closes) {
        window->native().willClose();
    } else if (window) {
        window->orderOut();
    }
    adw_tab_view_close_page_finish(view, page, closes ? TRUE : FALSE);
    return GDK_EVENT_STOP;
}

void TabHost::pageCountChanged(AdwTabView* view, GParamSpec* /*property*/) {
    if (adw_tab_view_get_n_pages(view) > 0 || adw_tab_view_get_is_transferring_page(view)) {
        return;
    }
    gtk_widget_set_visible(toplevel_.get(), FALSE);
    Application::shared().native().hostEmptied(shared_from_this());
}

void TabHost::selectionChanged(AdwTabView* /*view*/, GParamSpec* /*property*/) {
    const auto window = selectedWindow();
    if (!window) {
        return;
    }
    gtk_window_set_title(toplevel(), window->title().c_str());
    setNeedsAttention(*window, false);
    window->native().takePendingFocus();
}

AdwTabView* TabHost::windowWanted(AdwTabView* /*view*/) {
    const auto host = create();
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(toplevel(), &width, &height);
    gtk_window_set_default_size(host->toplevel(), width, height);
    host->present();
    return host->tabView_;
}

void TabHost::focusChanged(GtkWindow* toplevel, GParamSpec* /*property*/) {
    View* view = viewOfWidget(gtk_window_get_focus(toplevel));
    if (!view) {
        return;
    }
    const auto keptAlive = view->shared_from_this();
    if (const auto window = view->window()) {
        window->native().focusMoved(*view);
    }
}

void TabHost::frameChanged(GtkWindow* toplevel, GParamSpec* /*property*/) {
    const auto window = selectedWindow();
    if (!window || window->frameAutosaveName().empty()) {
        return;
    }
    SavedFrame frame{.isMaximized = gtk_window_is_maximized(toplevel) == TRUE};
    gtk_window_get_default_size(toplevel, &frame.width, &frame.height);
    Application::shared().native().savedFrames().setFrame(window->frameAutosaveName(), frame);
}

void TabHost::activeChanged(GtkWindow* toplevel, GParamSpec* /*property*/) {
    if (gtk_window_is_active(toplevel)) {
        wasUsed();
    }
}

void TabHost::newTabClicked(GtkButton* /*button*/) {
    wasUsed();
    Application::shared().sendAction(StandardAction::newWindowForTab, nullptr, {});
}

} // namespace Platform
