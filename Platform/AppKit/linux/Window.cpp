#include "Platform/AppKit/Window.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/TabHost.h"
#include "Platform/AppKit/linux/TextFieldNative.h"
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
    static const std::map<Action, void (*)(Window&, TabHost&)> table = {
        {StandardAction::performClose, [](Window& window, TabHost&) { window.close(); }},
        {StandardAction::performMiniaturize,
         [](Window&, TabHost& host) { gtk_window_minimize(host.toplevel()); }},
        {StandardAction::performZoom, [](Window&, TabHost& host) { zoom(host.toplevel()); }},
        {StandardAction::selectPreviousTab, [](Window&, TabHost& host) { host.selectNeighbour(-1); }},
        {StandardAction::selectNextTab, [](Window&, TabHost& host) { host.selectNeighbour(1); }},
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
        const auto host = TabHost::of(*this);
        g_object_set_qdata(G_OBJECT(page), windowQuark(), nullptr);
        if (host && !closed_) {
            host->closePage(*this);
        }
    }
}

void Window::setTitle(const std::string& title) {
    if (title_ == title) {
        return;
    }
    title_ = title;
    if (const auto host = TabHost::of(*this)) {
        host->updateTitle(*this);
    }
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
    auto host = TabHost::of(*this);
    if (!host) {
        makeKeyAndOrderFront();
        host = TabHost::of(*this);
    }
    window->native_->makePage();
    if (!TabHost::of(*window)) {
        host->addPage(*window, this);
    }
}

void Window::makeKeyAndOrderFront() {
    assertMainThread("Window::makeKeyAndOrderFront");
    if (closed_) {
        return;
    }
    native_->makePage();
    auto host = TabHost::of(*this);
    if (!host) {
        host = TabHost::create();
        host->setFrame(*this);
        host->addPage(*this, nullptr);
    }
    host->select(*this);
    host->present();
    native_->takeFocus();
}

void Window::orderOut() {
    assertMainThread("Window::orderOut");
    if (const auto host = TabHost::of(*this)) {
        host->orderOut();
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
    } else if (const auto host = TabHost::of(*this)) {
        host->closePage(*this);
    } else {
        native_->willClose();
    }
}

bool Window::respondsTo(Action action) const { return Native::isWindowAction(action); }

bool Window::Native::isWindowAction(Action action) { return windowActions().contains(action); }

void Window::perform(Action action, const ActionSender& /*sender*/) {
    if (const auto host = TabHost::of(*this)) {
        windowActions().at(action)(*this, *host);
    }
}

bool Window::validateMenuItem(MenuItem& item) {
    const auto host = TabHost::of(*this);
    if (!host) {
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
    return adw_tab_view_get_n_pages(host->tabView()) > 1;
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

void Window::Native::focusMoved(View& view) {
    const auto previous = firstResponder.lock();
    firstResponder = view.weak_from_this();
    focusPending = false;
    // GTK reads this setting right after it reports the new focus. A field that gets the focus back from a
    // menu, a sheet or another tab must keep its selection. Otherwise GTK selects the whole text, and the
    // next character that the user types replaces it.
    const bool isFocusedAnew = previous.get() != &view;
    g_object_set(gtk_settings_get_default(), "gtk-entry-select-on-focus", isFocusedAnew, nullptr);
    if (!isFocusedAnew) {
        return;
    }
    if (const auto field = std::dynamic_pointer_cast<TextField>(previous)) {
        TextFieldEvents::focusLeft(*field);
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
    if (const auto host = TabHost::of(window)) {
        host->setNeedsAttention(window, true);
    }
    takeFocus();
    return true;
}

void Window::Native::hideSheet() {
    gtk_overlay_remove_overlay(GTK_OVERLAY(page.get()), sheet->widget());
    sheet.reset();
    // The next sheet is shown immediately and takes the focus.
    if (!sheets.isEmpty()) {
        return;
    }
    setContentReachable(true);
    if (const auto host = TabHost::of(window)) {
        host->setNeedsAttention(window, false);
    }
    takeFocus();
}

/// Allows or prevents pointer input and keyboard focus in the content under a sheet. Unlike making the
/// content insensitive, this does not change its appearance.
void Window::Native::setContentReachable(bool reachable) const {
    GtkWidget* content = window.contentView_->native().widget.get();
    gtk_widget_set_can_target(content, reachable ? TRUE : FALSE);
    gtk_widget_set_can_focus(content, reachable ? TRUE : FALSE);
}

} // namespace Platform
