#include "Platform/WebKit/linux/SafeAnswers.h"

#include "Platform/Foundation/Characters.h"

#include <libsoup/soup.h>

#include <string_view>

namespace Platform {

namespace {

bool isAttachment(WebKitURIResponse* response) {
    SoupMessageHeaders* headers = webkit_uri_response_get_http_headers(response);
    const char* disposition =
        headers ? soup_message_headers_get_one(headers, "Content-Disposition") : nullptr;
    if (!disposition) {
        return false;
    }
    std::string_view type = disposition;
    type = type.substr(0, type.find(';'));
    constexpr std::string_view space = " \t";
    const auto begin = type.find_first_not_of(space);
    if (begin == std::string_view::npos) {
        return false;
    }
    type = type.substr(begin, type.find_last_not_of(space) - begin + 1);
    return asciiLowercased(type) == "attachment";
}

gboolean decidePolicy(WebKitWebView* /*view*/, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type,
                      gpointer /*data*/) {
    if (type != WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        return FALSE;
    }
    auto* response = WEBKIT_RESPONSE_POLICY_DECISION(decision);
    if (!isAttachment(webkit_response_policy_decision_get_response(response))) {
        return FALSE;
    }
    webkit_policy_decision_ignore(decision);
    return TRUE;
}

gboolean scriptDialog(WebKitWebView* /*view*/, WebKitScriptDialog* dialog, gpointer /*data*/) {
    // Always allow leaving the page. After a refusal, WebKitGTK 2.50.6 continues to report the URL of the
    // next page and that the view is loading (not reported).
    if (webkit_script_dialog_get_dialog_type(dialog) == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
        webkit_script_dialog_confirm_set_confirmed(dialog, TRUE);
    }
    // Nothing else holds a reference to the dialog, so it closes when the handler returns.
    return TRUE;
}

gboolean loadFailed(WebKitWebView* /*view*/, WebKitLoadEvent /*event*/, const char* /*uri*/,
                    GError* /*error*/, gpointer /*data*/) {
    return TRUE;
}

gboolean permissionRequest(WebKitWebView* /*view*/, WebKitPermissionRequest* request, gpointer /*data*/) {
    webkit_permission_request_deny(request);
    return TRUE;
}

gboolean queryPermissionState(WebKitWebView* /*view*/, WebKitPermissionStateQuery* query, gpointer /*data*/) {
    webkit_permission_state_query_finish(query, WEBKIT_PERMISSION_STATE_DENIED);
    return TRUE;
}

/// Continues without a credential, so that WebKitGTK shows the page that the server sent with its response.
gboolean authenticate(WebKitWebView* /*view*/, WebKitAuthenticationRequest* request, gpointer /*data*/) {
    webkit_authentication_request_authenticate(request, nullptr);
    return TRUE;
}

gboolean runFileChooser(WebKitWebView* /*view*/, WebKitFileChooserRequest* request, gpointer /*data*/) {
    webkit_file_chooser_request_cancel(request);
    return TRUE;
}

gboolean print(WebKitWebView* /*view*/, WebKitPrintOperation* /*operation*/, gpointer /*data*/) {
    return TRUE;
}

gboolean enterFullscreen(WebKitWebView* /*view*/, gpointer /*data*/) { return TRUE; }

bool isRefused(WebKitContextMenuItem* item) {
    switch (webkit_context_menu_item_get_stock_action(item)) {
    case WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_LINK_TO_DISK:
    case WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_IMAGE_TO_DISK:
    case WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_VIDEO_TO_DISK:
    case WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_AUDIO_TO_DISK:
    case WEBKIT_CONTEXT_MENU_ACTION_ENTER_VIDEO_FULLSCREEN:
        return true;
    default:
        return false;
    }
}

void removeRefused(WebKitContextMenu* menu) {
    for (guint index = webkit_context_menu_get_n_items(menu); index-- > 0;) {
        WebKitContextMenuItem* item = webkit_context_menu_get_item_at_position(menu, index);
        if (isRefused(item)) {
            webkit_context_menu_remove(menu, item);
        } else if (WebKitContextMenu* submenu = webkit_context_menu_item_get_submenu(item)) {
            removeRefused(submenu);
        }
    }
    // Remove separators next to another separator or at either end of the menu.
    bool separatorBehind = true;
    for (guint index = webkit_context_menu_get_n_items(menu); index-- > 0;) {
        WebKitContextMenuItem* item = webkit_context_menu_get_item_at_position(menu, index);
        const bool separator = webkit_context_menu_item_is_separator(item);
        if (separator && (separatorBehind || index == 0)) {
            webkit_context_menu_remove(menu, item);
        }
        separatorBehind = separator;
    }
}

gboolean contextMenu(WebKitWebView* /*view*/, WebKitContextMenu* menu, WebKitHitTestResult* /*hit*/,
                     gpointer /*data*/) {
    removeRefused(menu);
    return webkit_context_menu_get_n_items(menu) == 0 ? TRUE : FALSE;
}

} // namespace

void giveSafeAnswers(WebKitWebView* view) {
    g_signal_connect(view, "decide-policy", G_CALLBACK(decidePolicy), nullptr);
    g_signal_connect(view, "script-dialog", G_CALLBACK(scriptDialog), nullptr);
    g_signal_connect(view, "load-failed", G_CALLBACK(loadFailed), nullptr);
    g_signal_connect(view, "permission-request", G_CALLBACK(permissionRequest), nullptr);
    g_signal_connect(view, "query-permission-state", G_CALLBACK(queryPermissionState), nullptr);
    g_signal_connect(view, "authenticate", G_CALLBACK(authenticate), nullptr);
    g_signal_connect(view, "run-file-chooser", G_CALLBACK(runFileChooser), nullptr);
    g_signal_connect(view, "print", G_CALLBACK(print), nullptr);
    g_signal_connect(view, "enter-fullscreen", G_CALLBACK(enterFullscreen), nullptr);
    g_signal_connect(view, "context-menu", G_CALLBACK(contextMenu), nullptr);
}

} // namespace Platform
