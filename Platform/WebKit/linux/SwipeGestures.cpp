#include "Platform/WebKit/linux/SwipeGestures.h"

namespace Platform {

SwipeGestures::SwipeGestures(WebKitWebView* view)
    : view_(view)
    , rootConnection_(view, "notify::root", G_CALLBACK(+[](WebKitWebView*, GParamSpec*, gpointer data) {
                          static_cast<SwipeGestures*>(data)->update();
                      }),
                      this) {}

void SwipeGestures::setAllowed(bool allowed) {
    isAllowed_ = allowed;
    update();
}

void SwipeGestures::update() {
    const bool inWindow = gtk_widget_get_root(GTK_WIDGET(view_)) != nullptr;
    webkit_settings_set_enable_back_forward_navigation_gestures(webkit_web_view_get_settings(view_),
                                                                isAllowed_ && inWindow ? TRUE : FALSE);
}

} // namespace Platform
