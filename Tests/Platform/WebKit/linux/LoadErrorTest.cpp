#include "Platform/WebKit/linux/LoadError.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include <string>
#include <utility>

using namespace Platform;

namespace {

std::pair<std::string, int> mapped(GQuark domain, int code, const std::string& description = "Why") {
    g_autoptr(GError) error = g_error_new_literal(domain, code, "Why");
    const auto result = loadError(*error, "http://failing.test/");
    if (!result) {
        return {"nothing", 0};
    }
    EXPECT_EQ(result->localizedDescription, description);
    EXPECT_EQ(result->failingURL, "http://failing.test/");
    return {result->domain, result->code};
}

std::pair<std::string, int> url(int code) { return {"NSURLErrorDomain", code}; }

} // namespace

TEST(LoadError, hasTheDomainsAndCodesOfFoundationAndWebKit) {
    EXPECT_EQ(mapped(WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED), url(-999));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_CANCELLED), url(-999));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_TIMED_OUT), url(-1001));
    EXPECT_EQ(mapped(G_RESOLVER_ERROR, G_RESOLVER_ERROR_NOT_FOUND), url(-1003));
    EXPECT_EQ(mapped(G_RESOLVER_ERROR, G_RESOLVER_ERROR_TEMPORARY_FAILURE), url(-1003));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_HOST_NOT_FOUND), url(-1003));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED), url(-1004));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_HOST_UNREACHABLE), url(-1004));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_NETWORK_UNREACHABLE), url(-1004));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_PARTIAL_INPUT), url(-1005));
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_CONNECTION_CLOSED), url(-1005));
    EXPECT_EQ(mapped(G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE,
                     "The server's certificate is not valid or not trusted."),
              url(-1202));
    EXPECT_EQ(mapped(G_TLS_ERROR, G_TLS_ERROR_NOT_TLS), url(-1200));
    EXPECT_EQ(mapped(WEBKIT_POLICY_ERROR, 101), std::pair(std::string("WebKitErrorDomain"), 101));
    EXPECT_EQ(mapped(WEBKIT_POLICY_ERROR, 102), std::pair(std::string("WebKitErrorDomain"), 102));
}

TEST(LoadError, keepsWhatHasNoCounterpart) {
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_PROXY_FAILED),
              std::pair(std::string("g-io-error-quark"), static_cast<int>(G_IO_ERROR_PROXY_FAILED)));
    EXPECT_EQ(mapped(WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_FAILED),
              std::pair(std::string("WebKitNetworkError"), 399));
}

TEST(LoadError, isNoneWhereAPlayerTakesOver) {
    EXPECT_EQ(mapped(WEBKIT_MEDIA_ERROR, WEBKIT_MEDIA_ERROR_WILL_HANDLE_LOAD).first, "nothing");
}

TEST(LoadError, hasNoFailingURLWhereTheEngineGivesNone) {
    g_autoptr(GError) error = g_error_new_literal(G_IO_ERROR, G_IO_ERROR_FAILED, "Why");
    EXPECT_EQ(loadError(*error, "")->failingURL, std::nullopt);
    EXPECT_EQ(loadError(*error, nullptr)->failingURL, std::nullopt);
}

TEST(RestrictedPort, concernsWebPagesOnly) {
    EXPECT_TRUE(usesRestrictedPort("http://host.test:1/"));
    EXPECT_TRUE(usesRestrictedPort("https://host.test:22/path"));
    EXPECT_TRUE(usesRestrictedPort("http://host.test:10080"));
    EXPECT_FALSE(usesRestrictedPort("http://host.test/"));
    EXPECT_FALSE(usesRestrictedPort("http://host.test:80/"));
    EXPECT_FALSE(usesRestrictedPort("http://host.test:8080/"));
    EXPECT_FALSE(usesRestrictedPort("ftp://host.test:21/"));
    EXPECT_FALSE(usesRestrictedPort("about:blank"));
    EXPECT_FALSE(usesRestrictedPort(""));
    EXPECT_FALSE(usesRestrictedPort(nullptr));
}
