#include "Platform/WebKit/linux/LoadError.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include <string>
#include <tuple>

using namespace Platform;

namespace {

using Mapped = std::tuple<std::string, int, std::string>;

Mapped mapped(GQuark domain, int code) {
    g_autoptr(GError) error = g_error_new_literal(domain, code, "Why");
    const auto result = loadError(*error, "http://failing.test/");
    if (!result) {
        return {"nothing", 0, ""};
    }
    EXPECT_EQ(result->failingURL, "http://failing.test/");
    return {result->domain, result->code, result->localizedDescription};
}

Mapped url(int code, const std::string& description) { return {"NSURLErrorDomain", code, description}; }

} // namespace

TEST(LoadError, hasTheDomainsAndCodesOfFoundationAndWebKit) {
    const Mapped cancelled = url(-999, "The load was cancelled.");
    EXPECT_EQ(mapped(WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED), cancelled);
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_CANCELLED), cancelled);
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_TIMED_OUT), url(-1001, "The request timed out."));
    const Mapped notFound = url(-1003, "The server was not found. Check the address and the network.");
    EXPECT_EQ(mapped(G_RESOLVER_ERROR, G_RESOLVER_ERROR_NOT_FOUND), notFound);
    EXPECT_EQ(mapped(G_RESOLVER_ERROR, G_RESOLVER_ERROR_TEMPORARY_FAILURE), notFound);
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_HOST_NOT_FOUND), notFound);
    const Mapped unreachable = url(-1004, "The server cannot be reached. Try again later.");
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED), unreachable);
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_HOST_UNREACHABLE), unreachable);
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_NETWORK_UNREACHABLE), unreachable);
    const Mapped lost = url(-1005, "The connection to the server was lost. Try again.");
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_PARTIAL_INPUT), lost);
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_CONNECTION_CLOSED), lost);
    EXPECT_EQ(mapped(G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE),
              url(-1202, "The server's certificate is not valid or not trusted."));
    EXPECT_EQ(mapped(G_TLS_ERROR, G_TLS_ERROR_NOT_TLS),
              url(-1200, "A secure connection to the server is not possible."));
    EXPECT_EQ(mapped(WEBKIT_POLICY_ERROR, 101), Mapped("WebKitErrorDomain", 101, "Why"));
    EXPECT_EQ(mapped(WEBKIT_POLICY_ERROR, 102), Mapped("WebKitErrorDomain", 102, "Why"));
}

TEST(LoadError, keepsWhatHasNoCounterpart) {
    EXPECT_EQ(mapped(G_IO_ERROR, G_IO_ERROR_PROXY_FAILED),
              Mapped("g-io-error-quark", static_cast<int>(G_IO_ERROR_PROXY_FAILED), "Why"));
    EXPECT_EQ(mapped(WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_FAILED),
              Mapped("WebKitNetworkError", 399, "Why"));
}

TEST(LoadError, isNoneWhereAPlayerTakesOver) {
    EXPECT_EQ(std::get<0>(mapped(WEBKIT_MEDIA_ERROR, WEBKIT_MEDIA_ERROR_WILL_HANDLE_LOAD)), "nothing");
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
