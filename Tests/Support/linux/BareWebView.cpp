#include "Tests/Support/BareWebView.h"

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

namespace TestSupport {

using Platform::GObjectPtr;

struct BareWebView::Native {
    GObjectPtr<GtkWidget> window = GObjectPtr<GtkWidget>::retain(gtk_window_new());
    WebKitWebView* view = nullptr; // owned by the window
};

BareWebView::BareWebView(int width, int height)
    : native_(std::make_unique<Native>()) {
    const auto session = GObjectPtr<WebKitNetworkSession>::adopt(webkit_network_session_new_ephemeral());
    native_->view =
        WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session.get(), nullptr));
    GtkWindow* window = GTK_WINDOW(native_->window.get());
    gtk_window_set_default_size(window, width, height);
    gtk_window_set_child(window, GTK_WIDGET(native_->view));
    gtk_window_present(window);
}

BareWebView::~BareWebView() { gtk_window_destroy(GTK_WINDOW(native_->window.get())); }

void BareWebView::load(const std::string& url) { webkit_web_view_load_uri(native_->view, url.c_str()); }

void BareWebView::loadHTMLString(const std::string& html, const std::string& baseURL) {
    webkit_web_view_load_html(native_->view, html.c_str(), baseURL.c_str());
}

} // namespace TestSupport
