#include "Platform/WebKit/linux/NetworkSession.h"
#include "Tests/Platform/WebKit/linux/WebViewFixture.h"
#include "Tests/Support/Display.h"

#include <filesystem>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

/// Fixture for tests of requests that a web view refuses because its delegates have no methods for them, such
/// as downloads, permissions and printing.
class WebViewRefusal : public WebViewTest {
protected:
    /// Returns the files in the session directory whose names contain `part`. The session directory contains
    /// every directory in which WebKitGTK may save a download.
    static std::vector<std::string> filesNamed(const std::string& part) {
        std::vector<std::string> result;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(TestSupport::sessionDirectory())) {
            if (entry.path().filename().string().find(part) != std::string::npos) {
                result.push_back(entry.path());
            }
        }
        return result;
    }

    HTTPResponse attachment(const std::string& disposition) {
        auto response = HTTPResponse::page("Attached");
        response.headers.emplace_back("Content-Disposition", disposition);
        return response;
    }
};

GObjectPtr<WebKitContextMenu> menuOf(const std::vector<WebKitContextMenuAction>& actions) {
    auto menu = GObjectPtr<WebKitContextMenu>::adopt(webkit_context_menu_new());
    for (const auto action : actions) {
        webkit_context_menu_append(menu.get(), action == WEBKIT_CONTEXT_MENU_ACTION_NO_ACTION
                                                   ? webkit_context_menu_item_new_separator()
                                                   : webkit_context_menu_item_new_from_stock_action(action));
    }
    return menu;
}

std::vector<WebKitContextMenuAction> actionsOf(WebKitContextMenu* menu) {
    std::vector<WebKitContextMenuAction> actions;
    for (guint index = 0; index < webkit_context_menu_get_n_items(menu); ++index) {
        auto* item = webkit_context_menu_get_item_at_position(menu, index);
        actions.push_back(webkit_context_menu_item_is_separator(item)
                              ? WEBKIT_CONTEXT_MENU_ACTION_NO_ACTION
                              : webkit_context_menu_item_get_stock_action(item));
    }
    return actions;
}

bool showsContextMenu(WebKitWebView* view, WebKitContextMenu* menu) {
    gboolean isHandled = FALSE;
    g_signal_emit_by_name(view, "context-menu", menu, nullptr, &isHandled);
    return isHandled == FALSE;
}

} // namespace

TEST_F(WebViewRefusal, anAttachmentIsNotSaved) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    for (const char* disposition :
         {"attachment; filename=saved.html", " Attachment ;filename=saved.html", "ATTACHMENT"}) {
        navigation->failures.clear();
        server.route("/attachment", attachment(disposition));
        view->load(request(server.url("/attachment")));
        ASSERT_TRUE(waitForFailures(1)) << disposition;
        EXPECT_TRUE(navigation->failures[0].provisional);
        EXPECT_EQ(navigation->failures[0].error.domain, "WebKitErrorDomain");
        EXPECT_EQ(navigation->failures[0].error.code, 102);
        EXPECT_EQ(urlOf(*view), server.url("/before"));
    }
    runFor(0.3);
    EXPECT_EQ(filesNamed("saved"), std::vector<std::string>());
    EXPECT_EQ(filesNamed("attachment"), std::vector<std::string>());
}

TEST_F(WebViewRefusal, whatIsToBeShownInlineIsShown) {
    const auto view = makeView();
    server.route("/inline", attachment("inline; filename=attachment"));
    view->load(request(server.url("/inline")));
    EXPECT_TRUE(waitForTitle(*view, "Attached"));
}

TEST_F(WebViewRefusal, whatCannotBeShownIsNotSaved) {
    const auto view = makeView();
    server.route("/unknown", HTTPResponse{.status = 200,
                                          .headers = {{"Content-Type", "application/x-unheard-of"}},
                                          .body = "unknown"});
    view->load(request(server.url("/unknown")));
    ASSERT_TRUE(waitForFailures(1));
    EXPECT_EQ(navigation->failures[0].error.domain, "WebKitErrorDomain");
    EXPECT_EQ(navigation->failures[0].error.code, 102);
    runFor(0.3);
    EXPECT_EQ(filesNamed("unknown"), std::vector<std::string>());
}

TEST_F(WebViewRefusal, aDownloadLinkSavesNothing) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    int downloads = 0;
    const SignalConnection connection(networkSession(WebsiteDataStore::defaultStore).get(),
                                      "download-started",
                                      G_CALLBACK(+[](WebKitNetworkSession*, WebKitDownload*, gpointer data) {
                                          ++*static_cast<int*>(data);
                                      }),
                                      &downloads);
    server.route("/file", HTTPResponse::page("File"));
    run(*view,
        "document.body.innerHTML = '<a id=a download=\"saved-by-link.html\" href=/file>x</a>'; a.click()");
    ASSERT_TRUE(runUntil([&] { return downloads == 1 || server.count("/file") == 1; }));
    runFor(0.5);
    EXPECT_EQ(filesNamed("saved-by-link"), std::vector<std::string>());
    run(*view, "document.body.innerHTML = '<a id=a download=\"saved-by-blob.txt\">x</a>'; "
               "a.href = URL.createObjectURL(new Blob(['text'])); a.click()");
    runFor(0.5);
    EXPECT_EQ(filesNamed("saved-by-blob"), std::vector<std::string>());
    EXPECT_EQ(evaluate(*view, "document.title"), "/page");
}

TEST_F(WebViewRefusal, theContextMenuOffersNoDownload) {
    const auto view = makeView();
    const auto menu = menuOf(
        {WEBKIT_CONTEXT_MENU_ACTION_OPEN_LINK, WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_LINK_TO_DISK,
         WEBKIT_CONTEXT_MENU_ACTION_NO_ACTION, WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_IMAGE_TO_DISK,
         WEBKIT_CONTEXT_MENU_ACTION_NO_ACTION, WEBKIT_CONTEXT_MENU_ACTION_MEDIA_PLAY,
         WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_VIDEO_TO_DISK, WEBKIT_CONTEXT_MENU_ACTION_ENTER_VIDEO_FULLSCREEN,
         WEBKIT_CONTEXT_MENU_ACTION_NO_ACTION, WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_AUDIO_TO_DISK});
    EXPECT_TRUE(showsContextMenu(widgetOf(*view), menu.get()));
    EXPECT_EQ(actionsOf(menu.get()),
              (std::vector<WebKitContextMenuAction>{WEBKIT_CONTEXT_MENU_ACTION_OPEN_LINK,
                                                    WEBKIT_CONTEXT_MENU_ACTION_NO_ACTION,
                                                    WEBKIT_CONTEXT_MENU_ACTION_MEDIA_PLAY}));
    const auto nothingElse = menuOf({WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_IMAGE_TO_DISK});
    EXPECT_FALSE(showsContextMenu(widgetOf(*view), nothingElse.get()));
}

TEST_F(WebViewRefusal, permissionsAreRefused) {
    const auto view = makeView();
    TestWindow window(*view);
    window.show();
    // Geolocation and notifications require a secure context, such as a page from the loopback interface.
    ASSERT_TRUE(loadPage(*view, "/page"));
    evaluate(*view, "navigator.geolocation.getCurrentPosition(() => document.title = 'allowed', "
                    "error => document.title = 'refused ' + error.code); 1");
    EXPECT_TRUE(waitForTitle(*view, "refused 1"));
    evaluate(*view, "Notification.requestPermission().then(answer => document.title = answer); 1");
    EXPECT_TRUE(waitForTitle(*view, "denied"));
}

TEST_F(WebViewRefusal, fullScreenIsRefused) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    EXPECT_EQ(
        evaluate(*view, "String(document.fullscreenEnabled || document.webkitFullscreenEnabled || false)"),
        "false");
    gboolean isHandled = FALSE;
    g_signal_emit_by_name(widgetOf(*view), "enter-fullscreen", &isHandled);
    EXPECT_TRUE(isHandled);
}

TEST_F(WebViewRefusal, printingDoesNothing) {
    const auto view = makeView();
    TestWindow window(*view);
    window.show();
    ASSERT_TRUE(loadPage(*view, "/page"));
    const guint windows = g_list_model_get_n_items(gtk_window_get_toplevels());
    EXPECT_EQ(evaluate(*view, "window.print(); 'printed'"), "printed");
    runFor(0.2);
    EXPECT_EQ(g_list_model_get_n_items(gtk_window_get_toplevels()), windows) << "no dialog";
}

TEST_F(WebViewRefusal, choosingFilesDoesNothing) {
    const auto view = makeView();
    TestWindow window(*view);
    window.show();
    ASSERT_TRUE(loadPage(*view, "/page"));
    const guint windows = g_list_model_get_n_items(gtk_window_get_toplevels());
    evaluate(*view, "document.body.innerHTML = '<input id=i type=file>'; i.click(); 1");
    runFor(0.2);
    EXPECT_EQ(g_list_model_get_n_items(gtk_window_get_toplevels()), windows) << "no dialog";
    EXPECT_EQ(evaluate(*view, "String(i.files.length)"), "0");
}

TEST_F(WebViewRefusal, theWidgetKeepsItsAnswersWhenTheViewIsGone) {
    auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    const auto widget = GObjectPtr<WebKitWebView>::retain(widgetOf(*view));
    view.reset();
    TestSupport::runPending();
    ui->panels.clear();
    webkit_web_view_evaluate_javascript(widget.get(),
                                        "document.title = 'got ' + confirm('Sure?') + window.open('/')", -1,
                                        nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(runUntil([&] {
        const char* title = webkit_web_view_get_title(widget.get());
        return title && std::string(title) == "got falsenull";
    }));
    webkit_web_view_load_uri(widget.get(), "http://no-such-host.invalid/");
    ASSERT_TRUE(runUntil([&] { return webkit_web_view_is_loading(widget.get()) == FALSE; }));
    runFor(0.2);
    EXPECT_EQ(webkit_web_view_get_uri(widget.get()), server.url("/page"));
    EXPECT_TRUE(ui->panels.empty());
    EXPECT_TRUE(navigation->failures.empty());
}
