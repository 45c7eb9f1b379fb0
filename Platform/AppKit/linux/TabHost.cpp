#include "Platform/AppKit/linux/TabHost.h"

#include "Platform/AppKit/linux/Minimizing.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/TabStrip.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/AppKit/linux/WindowNative.h"
#include "Platform/Foundation/MakeShared.h"

#include <algorithm>
#include <iterator>

namespace Platform {

namespace {

GQuark hostQuark() {
    static const GQuark quark = g_quark_from_static_string("keyloft-host");
    return quark;
}

} // namespace

void presentTopLevel(GtkWindow* toplevel) { TabHost::of(toplevel)->present(); }

std::shared_ptr<TabHost> TabHost::of(GtkWindow* toplevel) {
    auto* host = static_cast<TabHost*>(g_object_get_qdata(G_OBJECT(toplevel), hostQuark()));
    return host ? host->shared_from_this() : nullptr;
}

std::shared_ptr<TabHost> TabHost::of(Window& window) {
    GtkWindow* toplevel = window.native().toplevel();
    return toplevel ? of(toplevel) : nullptr;
}

template <auto handler>
void TabHost::connect(gpointer instance, const char* signal) {
    connections_.push_back(connectSignal<handler>(instance, signal, *this));
}

TabHost::TabHost(TabHosts& hosts)
    : hosts_(hosts)
    , toplevel_(GObjectPtr<GtkWidget>::retain(gtk_window_new()))
    , returnedKeys_(toplevel())
    , tabView_(adw_tab_view_new()) {
    gtk_window_set_application(toplevel(), hosts.application.get());
    g_object_set_qdata(G_OBJECT(toplevel()), hostQuark(), this);

    GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    if (hosts.mainMenu) {
        menuBar_ = std::make_unique<MenuBar>(toplevel_.get(), hosts);
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

    // AdwTabView handles its shortcuts before the page does. Keep only Control+Tab and Control+Shift+Tab.
    adw_tab_view_set_shortcuts(tabView_,
                               static_cast<AdwTabViewShortcuts>(ADW_TAB_VIEW_SHORTCUT_CONTROL_TAB |
                                                                ADW_TAB_VIEW_SHORTCUT_CONTROL_SHIFT_TAB));
    gtk_widget_set_vexpand(GTK_WIDGET(tabView_), TRUE);
    gtk_box_append(GTK_BOX(column), GTK_WIDGET(tabView_));
    gtk_window_set_child(toplevel(), column);

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

TabHost::~TabHost() {
    connections_.clear();
    g_object_set_qdata(G_OBJECT(toplevel()), hostQuark(), nullptr);
    gtk_window_destroy(toplevel());
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
    if (const auto saved = hosts_.savedFrames().frame(window.frameAutosaveName())) {
        // A saved frame needs no upper limit, because GTK fits the window to the screen.
        frame = *saved;
        frame.width = std::max(frame.width, static_cast<int>(window.minSize().width));
        frame.height = std::max(frame.height, static_cast<int>(window.minSize().height) + barHeight);
    }
    gtk_window_set_default_size(toplevel(), frame.width, frame.height);
    if (frame.isMaximized) {
        gtk_window_maximize(toplevel());
    }
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

void TabHost::present() {
    wasUsed();
    gtk_window_present(toplevel());
    // Flush, so that the window manager can show the window before this process loads the first page.
    gdk_display_flush(gtk_widget_get_display(toplevel_.get()));
}

void TabHost::wasUsed() {
    static std::uint64_t uses = 0;
    lastUse_ = ++uses;
}

gboolean TabHost::closeRequested(GtkWindow* /*toplevel*/) {
    // Hide the window first. Otherwise each tab is shown briefly when the tab before it closes.
    gtk_widget_set_visible(toplevel_.get(), FALSE);
    // GTK's default handler does not emit `close-page`. Close the tabs one at a time, in order.
    for (const auto& window : windows()) {
        if (window->native().tabView() == tabView_) {
            window->native().closeTab();
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
    hosts_.remove(shared_from_this());
}

void TabHost::selectionChanged(AdwTabView* /*view*/, GParamSpec* /*property*/) {
    const auto window = selectedWindow();
    if (!window) {
        return;
    }
    gtk_window_set_title(toplevel(), window->title().c_str());
    window->native().setNeedsAttention(false);
    window->native().takePendingFocus();
}

AdwTabView* TabHost::windowWanted(AdwTabView* /*view*/) {
    const auto host = hosts_.create();
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
    hosts_.savedFrames().setFrame(window->frameAutosaveName(), frame);
}

void TabHost::activeChanged(GtkWindow* toplevel, GParamSpec* /*property*/) {
    if (gtk_window_is_active(toplevel)) {
        wasUsed();
    }
}

void TabHost::newTabClicked(GtkButton* /*button*/) {
    wasUsed();
    sendAction(StandardAction::newWindowForTab, nullptr, {});
}

std::shared_ptr<TabHost> TabHosts::create() { return hosts_.emplace_back(makeShared<TabHost>(*this)); }

void TabHosts::remove(const std::shared_ptr<TabHost>& host) {
    std::erase(hosts_, host);
    // Destroy the host later, because GTK still uses its top-level window for pending events and layout.
    const auto forget = [](gpointer data) -> gboolean {
        const std::unique_ptr<std::shared_ptr<TabHost>> last(static_cast<std::shared_ptr<TabHost>*>(data));
        return G_SOURCE_REMOVE;
    };
    g_idle_add(forget, std::make_unique<std::shared_ptr<TabHost>>(host).release());
    if (hosts_.empty()) {
        lastHostClosed();
    }
}

SavedFrames& TabHosts::savedFrames() {
    if (!frames) {
        frames = std::make_unique<SavedFrames>(g_get_user_state_dir());
    }
    return *frames;
}

std::vector<std::shared_ptr<TabHost>> TabHosts::visible() const {
    std::vector<std::shared_ptr<TabHost>> visible;
    std::ranges::copy_if(hosts_, std::back_inserter(visible), [](const auto& host) {
        return gtk_widget_get_visible(GTK_WIDGET(host->toplevel()));
    });
    return visible;
}

std::shared_ptr<TabHost> TabHosts::front() const {
    const auto visible = this->visible();
    const auto front = std::ranges::max_element(visible, {}, &TabHost::lastUse);
    return front == visible.end() ? nullptr : *front;
}

void TabHosts::bringAllToFront() const {
    auto byUse = visible();
    std::ranges::sort(byUse, {}, &TabHost::lastUse);
    for (const auto& host : byUse) {
        host->present();
    }
}

std::vector<std::shared_ptr<Window>> TabHosts::windows() const {
    std::vector<std::shared_ptr<Window>> windows;
    for (const auto& host : visible()) {
        std::ranges::copy(host->windows(), std::back_inserter(windows));
    }
    return windows;
}

std::shared_ptr<Window> TabHosts::mainWindow() const {
    const auto host = front();
    return host ? host->selectedWindow() : nullptr;
}

} // namespace Platform
