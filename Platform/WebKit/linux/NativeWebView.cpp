#include "Platform/WebKit/linux/NativeWebView.h"

#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/WebKit/linux/NetworkSession.h"
#include "Platform/WebKit/linux/UserContentControllerNative.h"
#include "Platform/WebKit/linux/WebViewConfigurationNative.h"

#include <map>
#include <utility>

namespace Platform {

namespace {

GObjectPtr<WebKitSettings> makeSettings() {
    auto settings = GObjectPtr<WebKitSettings>::adopt(webkit_settings_new());
    webkit_settings_set_javascript_can_open_windows_automatically(settings.get(), TRUE);
    webkit_settings_set_enable_fullscreen(settings.get(), FALSE);
    return settings;
}

/// Prevents Tab from moving the focus from a page's last link to a text view inside WebKitWebView, where it
/// would be stuck. WebKitGTK 2.50.6 uses the text view only to look up key bindings (not reported).
void keepFocusFromInnerWidgets(GtkWidget* view) {
    for (GtkWidget* child = gtk_widget_get_first_child(view); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_TEXT_VIEW(child)) {
            gtk_widget_set_can_focus(child, FALSE);
        }
    }
}

std::optional<std::string> nonEmpty(const char* text) {
    return text && *text ? std::optional<std::string>(text) : std::nullopt;
}

const std::map<Action, const char*>& editingCommands() {
    static const std::map<Action, const char*> table = {
        {StandardAction::undo, WEBKIT_EDITING_COMMAND_UNDO},
        {StandardAction::redo, WEBKIT_EDITING_COMMAND_REDO},
        {StandardAction::cut, WEBKIT_EDITING_COMMAND_CUT},
        {StandardAction::copy, WEBKIT_EDITING_COMMAND_COPY},
        {StandardAction::paste, WEBKIT_EDITING_COMMAND_PASTE},
        {StandardAction::selectAll, WEBKIT_EDITING_COMMAND_SELECT_ALL},
    };
    return table;
}

} // namespace

GObjectPtr<WebKitWebView> makeNativeWebView(WebViewConfiguration& configuration) {
    const auto settings = makeSettings();
    auto* manager = configuration.userContentController()->native().manager.get();
    gpointer object = nullptr;
    if (const auto opener = std::exchange(configuration.native().opener, {})) {
        // A related view uses the session of its opener. It is an error to set the session as well.
        object = g_object_new(WEBKIT_TYPE_WEB_VIEW, "related-view", opener.get(), "settings", settings.get(),
                              "user-content-manager", manager, nullptr);
    } else {
        const auto session = networkSession(configuration.websiteDataStore());
        object = g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session.get(), "settings",
                              settings.get(), "user-content-manager", manager, nullptr);
    }
    keepFocusFromInnerWidgets(GTK_WIDGET(object));
    g_object_set(object, "accessible-role", GTK_ACCESSIBLE_ROLE_DOCUMENT, nullptr);
    setAccessibleName(GTK_WIDGET(object), "Web page");
    return GObjectPtr<WebKitWebView>::retain(WEBKIT_WEB_VIEW(object));
}

std::optional<std::string> uriOf(WebKitWebView* view) { return nonEmpty(webkit_web_view_get_uri(view)); }
std::optional<std::string> titleOf(WebKitWebView* view) { return nonEmpty(webkit_web_view_get_title(view)); }

std::string engineText(const URL& url) {
    const auto request =
        GObjectPtr<WebKitURIRequest>::adopt(webkit_uri_request_new(url.absoluteString().c_str()));
    return webkit_uri_request_get_uri(request.get());
}

void executeEditing(WebKitWebView* view, Action action) {
    webkit_web_view_execute_editing_command(view, editingCommands().at(action));
}

} // namespace Platform
