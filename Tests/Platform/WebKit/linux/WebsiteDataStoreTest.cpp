#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/WebKit/linux/NetworkSession.h"
#include "Tests/Platform/WebKit/linux/WebViewFixture.h"

#include <filesystem>
#include <fstream>

using namespace Platform;
using TestSupport::HTTPRequest;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

class DefaultWebsiteDataStore : public WebViewTest {
protected:
    static std::filesystem::path folder(const char* userDirectory) {
        return std::filesystem::path(userDirectory) / programInfo().identifier;
    }
    static std::filesystem::perms permissions(const std::filesystem::path& path) {
        return std::filesystem::status(path).permissions();
    }
};

} // namespace

TEST_F(DefaultWebsiteDataStore, isMadeByTheFirstView) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitAfter([this] {
                    EXPECT_FALSE(std::filesystem::exists(folder(g_get_user_data_dir())));
                    const auto view = makeView();
                    EXPECT_TRUE(std::filesystem::exists(folder(g_get_user_data_dir())));
                    EXPECT_TRUE(std::filesystem::exists(folder(g_get_user_cache_dir())));
                }),
                succeeds, "");
}

TEST_F(DefaultWebsiteDataStore, onlyTheUserMayEnter) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitAfter([this] {
                    // Create a directory that other users can enter, as an older version or another program
                    // may have done.
                    std::filesystem::create_directories(folder(g_get_user_data_dir()));
                    std::filesystem::permissions(folder(g_get_user_data_dir()),
                                                 std::filesystem::perms::owner_all |
                                                     std::filesystem::perms::others_read |
                                                     std::filesystem::perms::others_exec);
                    const auto view = makeView();
                    EXPECT_EQ(permissions(folder(g_get_user_data_dir())), std::filesystem::perms::owner_all);
                    EXPECT_EQ(permissions(folder(g_get_user_cache_dir())), std::filesystem::perms::owner_all);
                }),
                succeeds, "");
}

TEST_F(DefaultWebsiteDataStore, keepsCookiesAndStorage) {
    const auto view = makeView();
    server.route("/page", [](const HTTPRequest&) {
        auto response = HTTPResponse::page("Page");
        response.headers.emplace_back("Set-Cookie", "kept=yes; Max-Age=1000");
        return response;
    });
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForTitle(*view, "Page"));
    EXPECT_EQ(evaluate(*view, "localStorage.kept = 'yes'; document.cookie"), "kept=yes");
    EXPECT_TRUE(
        runUntil([] { return std::filesystem::exists(folder(g_get_user_data_dir()) / "cookies.sqlite"); }));
    EXPECT_TRUE(runUntil([] {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 folder(g_get_user_data_dir()), std::filesystem::directory_options::skip_permission_denied)) {
            if (entry.path().filename().string().find("localstorage") != std::string::npos) {
                return true;
            }
        }
        return false;
    }));
}

TEST_F(DefaultWebsiteDataStore, isSharedByAllViews) {
    const auto one = makeView();
    const auto other = makeView();
    EXPECT_EQ(webkit_web_view_get_network_session(widgetOf(*one)),
              webkit_web_view_get_network_session(widgetOf(*other)));
    server.route("/set", [](const HTTPRequest&) {
        auto response = HTTPResponse::page("Set");
        response.headers.emplace_back("Set-Cookie", "shared=yes");
        return response;
    });
    server.route("/get", [](const HTTPRequest& request) {
        const auto cookie = request.headers.find("cookie");
        return HTTPResponse::page(cookie == request.headers.end() ? "none" : cookie->second);
    });
    one->load(request(server.url("/set")));
    ASSERT_TRUE(waitForTitle(*one, "Set"));
    other->load(request(server.url("/get")));
    EXPECT_TRUE(waitForTitle(*other, "shared=yes"));
}

TEST_F(DefaultWebsiteDataStore, aBadCertificateFailsTheLoad) {
    EXPECT_EQ(
        webkit_network_session_get_tls_errors_policy(networkSession(WebsiteDataStore::defaultStore).get()),
        WEBKIT_TLS_ERRORS_POLICY_FAIL);
}

TEST_F(DefaultWebsiteDataStore, pagesAreShownWhereNothingCanBeKept) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitAfter([this] {
                    // A file in place of the directory makes the creation of the directory fail even for
                    // root.
                    std::ofstream(folder(g_get_user_data_dir())) << "in the way";
                    ASSERT_FALSE(std::filesystem::is_directory(folder(g_get_user_data_dir())));
                    const auto view = makeView();
                    EXPECT_TRUE(webkit_network_session_is_ephemeral(
                        webkit_web_view_get_network_session(widgetOf(*view))));
                    EXPECT_TRUE(loadPage(*view, "/page"));
                }),
                succeeds, "");
}

namespace {

class NonPersistentWebsiteDataStore : public WebViewTest {
protected:
    static std::shared_ptr<WebViewConfiguration> configuration() {
        auto configuration = WebViewConfiguration::create();
        configuration->setWebsiteDataStore(WebsiteDataStore::nonPersistent);
        return configuration;
    }
    /// Loads a page in `view` and returns its cookies and the item `kept` of its local storage.
    std::string found(WebView& view) {
        server.route("/get", HTTPResponse::page("get"));
        view.load(request(server.url("/get")));
        EXPECT_TRUE(waitForTitle(view, "get"));
        return evaluate(view, "document.cookie + ' ' + localStorage.kept");
    }
    void leaveTraces(WebView& view) {
        server.route("/set", [](const HTTPRequest&) {
            auto response = HTTPResponse::page("set");
            response.headers.emplace_back("Set-Cookie", "kept=yes; Max-Age=1000");
            return response;
        });
        view.load(request(server.url("/set")));
        ASSERT_TRUE(waitForTitle(view, "set"));
        EXPECT_EQ(evaluate(view, "localStorage.kept = 'yes'; document.cookie"), "kept=yes");
        EXPECT_EQ(found(view), "kept=yes yes");
    }
};

} // namespace

TEST_F(NonPersistentWebsiteDataStore, isEachViewsOwn) {
    const auto one = makeView(configuration());
    leaveTraces(*one);
    EXPECT_EQ(found(*makeView(configuration())), " undefined");
    EXPECT_EQ(found(*makeView(one->configuration())), " undefined");
    EXPECT_EQ(found(*makeView()), " undefined");
}

TEST_F(NonPersistentWebsiteDataStore, writesNothing) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitAfter([this] {
                    const auto view = makeView(configuration());
                    leaveTraces(*view);
                    EXPECT_TRUE(webkit_network_session_is_ephemeral(
                        webkit_web_view_get_network_session(widgetOf(*view))));
                    for (const char* directory : {g_get_user_data_dir(), g_get_user_cache_dir()}) {
                        EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(directory) /
                                                             programInfo().identifier));
                    }
                }),
                succeeds, "");
}

TEST_F(NonPersistentWebsiteDataStore, isSharedWithThePagesNewWindows) {
    std::shared_ptr<WebView> child;
    ui->onCreate = [&](const auto& given) { return child = makeView(given); };
    const auto view = makeView(configuration());
    leaveTraces(*view);
    run(*view, "window.open('" + server.url("/get") + "')");
    ASSERT_TRUE(runUntil([&] { return child && child->title() == "get"; }));
    EXPECT_EQ(evaluate(*child, "document.cookie"), "kept=yes");
}

TEST_F(NonPersistentWebsiteDataStore, refusesBadCertificatesAndDownloads) {
    const auto session = networkSession(WebsiteDataStore::nonPersistent);
    EXPECT_EQ(webkit_network_session_get_tls_errors_policy(session.get()), WEBKIT_TLS_ERRORS_POLICY_FAIL);
    EXPECT_TRUE(g_signal_has_handler_pending(
        session.get(), g_signal_lookup("download-started", WEBKIT_TYPE_NETWORK_SESSION), 0, FALSE));
}
