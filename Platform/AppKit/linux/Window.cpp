#include "Platform/AppKit/Window.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/AppKit/linux/WindowNative.h"
#include "Platform/Foundation/MakeShared.h"

#include <map>

namespace Platform {

namespace {

GQuark windowQuark() {
    static const GQuark quark = g_quark_from_static_string("keyloft-window");
    return quark;
}

/// Returns true if a menu of the menu bar is open and has the keyboard focus.
bool isMenuOpen(GtkRoot* root) {
    GtkWidget* focus = gtk_root_get_focus(root);
    GtkWidget* menu = focus ? gtk_widget_get_ancestor(focus, GTK_TYPE_POPOVER_MENU) : nullptr;
    return menu && gtk_widget_get_visible(menu) && gtk_widget_get_ancestor(menu, GTK_TYPE_POPOVER_MENU_BAR);
}

void zoom(GtkWindow* window) {
    if (gtk_window_is_maximized(window)) {
        gtk_window_unmaximize(window);
    } else {
        gtk_window_maximize(window);
    }
}

const auto& windowActions() {
    static const std::map<Action, void (*)(Window&)> table = {
        {StandardAction::performClose, [](Window& window) { window.close(); }},
        {StandardAction::performMiniaturize,
         [](Window& window) { gtk_window_minimize(window.native().toplevel()); }},
        {StandardAction::performZoom, [](Window& window) { zoom(window.native().toplevel()); }},
        {StandardAction::selectPreviousTab, [](Window& window) { window.native().selectNeighbour(-1); }},
        {StandardAction::selectNextTab, [](Window& window) { window.native().selectNeighbour(1); }},
    };
    return table;
}

} // namespace

Window::Window(Size contentSize, Style style)
    : contentSize_(contentSize)
    , style_(style)
    , native_(std::make_unique<Native>(*this)) {
    assertMainThread("Window");
}

std::shared_ptr<Window> Window::create(Size contentSize, Style style) {
    auto window = makeShared<Window>(contentSize, style);
    window->contentView_ = View::create();
    window->contentView_->window_ = window;
    return window;
}

Window::~Window() {
    native_->sheets.close();
    if (GtkWidget* page = native_->page.get()) {
        g_object_set_qdata(G_OBJECT(page), windowQuark(), nullptr);
    }
    if (!closed_ && native_->tab()) {
        native_->closeTab();
    }
}

void Window::setTitle(const std::string& title) {
    if (title_ == title) {
        return;
    }
    title_ = title;
    native_->updateTitle();
}

void Window::setMinSize(Size size) {
    minSize_ = size;
    if (native_->page) {
        native_->applyMinSize();
    }
}

void Window::setContentView(const std::shared_ptr<View>& view) {
    assertMainThread("Window::setContentView");
    contentView_->window_.reset();
    contentView_ = view;
    view->window_ = weak_from_this();
    if (GtkWidget* page = native_->page.get()) {
        gtk_overlay_set_child(GTK_OVERLAY(page), view->native().widget.get());
    }
}

void Window::addTabbedWindow(const std::shared_ptr<Window>& window) {
    assertMainThread("Window::addTabbedWindow");
    if (closed_ || window->closed_) {
        return;
    }
    if (!native_->tab()) {
        makeKeyAndOrderFront();
    }
    window->native_->makePage();
    if (!window->native_->tab()) {
        AdwTabView* tabs = native_->tabView();
        window->native_->insert(tabs, adw_tab_view_get_page_position(tabs, native_->tab()) + 1);
    }
}

void Window::makeKeyAndOrderFront() {
    assertMainThread("Window::makeKeyAndOrderFront");
    if (closed_) {
        return;
    }
    native_->makePage();
    if (!native_->tab()) {
        native_->insert(createTopLevel(*this), 0);
    }
    adw_tab_view_set_selected_page(native_->tabView(), native_->tab());
    presentTopLevel(native_->toplevel());
    native_->takeFocus();
}

void Window::orderOut() {
    assertMainThread("Window::orderOut");
    if (GtkWindow* toplevel = native_->toplevel()) {
        gtk_widget_set_visible(GTK_WIDGET(toplevel), FALSE);
    }
}

bool Window::isVisible() const { return native_->page && gtk_widget_get_mapped(native_->page.get()); }

void Window::makeFirstResponder(const std::shared_ptr<View>& view) {
    assertMainThread("Window::makeFirstResponder");
    const auto keptAlive = shared_from_this();
    native_->focusMoved(*view);
    native_->takeFocus();
}

std::shared_ptr<View> Window::firstResponder() const { return native_->firstResponder.lock(); }

void Window::close() {
    assertMainThread("Window::close");
    const auto keptAlive = shared_from_this();
    if (!releasedWhenClosed_) {
        orderOut();
    } else if (native_->tab()) {
        native_->closeTab();
    } else {
        native_->willClose();
    }
}

void Window::beginSheet(const Alert& alert, std::function<void(std::size_t)> completion) {
    assertMainThread("Window::beginSheet");
    native_->sheets.add(alert, std::move(completion));
}

bool Window::respondsTo(Action action) const { return Native::isWindowAction(action); }

bool Window::Native::isWindowAction(Action action) { return windowActions().contains(action); }

void Window::perform(Action action, const ActionSender& /*sender*/) {
    if (native_->tab()) {
        windowActions().at(action)(*this);
    }
}

bool Window::validateMenuItem(MenuItem& item) {
    if (!native_->tab()) {
        return false;
    }
    if (item.action() == StandardAction::performClose) {
        return style_.closable;
    }
    if (item.action() == StandardAction::performMiniaturize) {
        return style_.miniaturizable;
    }
    if (item.action() == StandardAction::performZoom) {
        return style_.resizable;
    }
    return adw_tab_view_get_n_pages(native_->tabView()) > 1;
}

void Window::Native::makePage() {
    if (page) {
        return;
    }
    page = GObjectPtr<GtkWidget>::retain(gtk_overlay_new());
    g_object_set_qdata(G_OBJECT(page.get()), windowQuark(), &window);
    gtk_overlay_set_child(GTK_OVERLAY(page.get()), window.contentView_->native().widget.get());
    applyMinSize();
    mapped = connectSignal<&Native::pageMapped>(page.get(), "map", *this);
}

void Window::Native::applyMinSize() const {
    const Size size = window.minSize_;
    gtk_widget_set_size_request(page.get(), static_cast<int>(size.width), static_cast<int>(size.height));
}

std::shared_ptr<Window> Window::Native::ofPage(GtkWidget* page) {
    auto* window = static_cast<Window*>(g_object_get_qdata(G_OBJECT(page), windowQuark()));
    return window ? window->weak_from_this().lock() : nullptr;
}

AdwTabView* Window::Native::tabView() const {
    GtkWidget* view = page ? gtk_widget_get_ancestor(page.get(), ADW_TYPE_TAB_VIEW) : nullptr;
    return view ? ADW_TAB_VIEW(view) : nullptr;
}

AdwTabPage* Window::Native::tab() const {
    AdwTabView* tabs = tabView();
    return tabs ? adw_tab_view_get_page(tabs, page.get()) : nullptr;
}

GtkWindow* Window::Native::toplevel() const {
    GtkRoot* root = page ? gtk_widget_get_root(page.get()) : nullptr;
    return root ? GTK_WINDOW(root) : nullptr;
}

void Window::Native::insert(AdwTabView* tabs, int position) const {
    adw_tab_view_insert(tabs, page.get(), position);
    updateTitle();
}

void Window::Native::closeTab() const { adw_tab_view_close_page(tabView(), tab()); }

void Window::Native::updateTitle() const {
    AdwTabPage* tab = this->tab();
    if (!tab) {
        return;
    }
    // Set a shortened tooltip for a long title. By default, a tab's tooltip is its whole title.
    const std::string shown = toolTipText(window.title_);
    const std::unique_ptr<char, decltype(&g_free)> toolTip(g_markup_escape_text(shown.c_str(), -1), &g_free);
    adw_tab_page_set_tooltip(tab, shown == window.title_ ? "" : toolTip.get());
    adw_tab_page_set_title(tab, window.title_.c_str());
    if (adw_tab_page_get_selected(tab)) {
        gtk_window_set_title(toplevel(), window.title_.c_str());
    }
}

void Window::Native::setNeedsAttention(bool needs) const {
    if (AdwTabPage* tab = this->tab()) {
        adw_tab_page_set_needs_attention(tab, needs && !adw_tab_page_get_selected(tab));
    }
}

void Window::Native::selectNeighbour(int step) const {
    AdwTabView* tabs = tabView();
    const int count = adw_tab_view_get_n_pages(tabs);
    const int selected = adw_tab_view_get_page_position(tabs, adw_tab_view_get_selected_page(tabs));
    adw_tab_view_set_selected_page(tabs, adw_tab_view_get_nth_page(tabs, (selected + step + count) % count));
}

void Window::Native::focusMoved(View& view) {
    const auto previous = firstResponder.lock();
    firstResponder = view.weak_from_this();
    focusPending = false;
    // GTK reads `gtk-entry-select-on-focus` right after it reports the new focus. A field that gets the focus
    // back from a menu, a sheet or another tab must keep its selection. Otherwise the next character that the
    // user types replaces the whole text.
    const bool isFocusedAnew = previous.get() != &view;
    g_object_set(gtk_settings_get_default(), "gtk-entry-select-on-focus", isFocusedAnew, nullptr);
    if (!isFocusedAnew) {
        return;
    }
    if (previous) {
        previous->resignFirstResponder();
    }
}

void Window::Native::takeFocus() {
    focusPending = true;
    takePendingFocus();
}

void Window::Native::takePendingFocus() {
    if (!focusPending || !page || !gtk_widget_get_mapped(page.get()) ||
        isMenuOpen(gtk_widget_get_root(page.get()))) {
        return;
    }
    if (sheet) {
        focusPending = false;
        sheet->focus();
    } else if (const auto view = firstResponder.lock(); view && view->nativeIfMade()) {
        focusPending = false;
        GtkWidget* focus = gtk_root_get_focus(gtk_widget_get_root(page.get()));
        if (viewOfWidget(focus) != view.get()) {
            gtk_widget_grab_focus(view->native().widget.get());
        }
    }
}

void Window::Native::willClose() {
    if (window.closed_) {
        return;
    }
    window.closed_ = true;
    const auto keptAlive = window.shared_from_this();
    sheets.close();
    if (const auto delegate = window.delegate_.lock()) {
        delegate->windowWillClose(window);
    }
}

void Window::Native::pageMapped(GtkWidget* /*page*/) { takePendingFocus(); }

bool Window::Native::showSheet(const Alert& alert) {
    makePage();
    sheet = std::make_unique<Sheet>(alert, [weak = window.weak_from_this()](std::size_t button) {
        if (const auto answered = weak.lock()) {
            answered->native().sheets.answer(button);
        }
    });
    setContentReachable(false);
    gtk_overlay_add_overlay(GTK_OVERLAY(page.get()), sheet->widget());
    setNeedsAttention(true);
    takeFocus();
    return true;
}

void Window::Native::hideSheet() {
    gtk_overlay_remove_overlay(GTK_OVERLAY(page.get()), sheet->widget());
    sheet.reset();
    // If another sheet is waiting, SheetQueue shows it next, so keep the content blocked.
    if (!sheets.isEmpty()) {
        return;
    }
    setContentReachable(true);
    setNeedsAttention(false);
    takeFocus();
}

/// Allows or prevents input to the content under a sheet, without changing its appearance.
void Window::Native::setContentReachable(bool reachable) const {
    GtkWidget* content = window.contentView_->native().widget.get();
    gtk_widget_set_can_target(content, reachable ? TRUE : FALSE);
    gtk_widget_set_can_focus(content, reachable ? TRUE : FALSE);
}

} // namespace Platform
