#include "Tests/Support/ProviderNetwork.h"

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/TLSServer.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

using namespace TestSupport;
using Platform::GObjectPtr;

namespace {

/// Result of a load: the title of the page, or the error.
struct Outcome {
    bool isOver = false;
    std::string title;
    std::string errorDomain;
    int errorCode = 0;
};

gboolean loadFailed(WebKitWebView* /*view*/, WebKitLoadEvent /*event*/, const char* /*uri*/, GError* error,
                    gpointer data) {
    auto& outcome = *static_cast<Outcome*>(data);
    outcome.errorDomain = g_quark_to_string(error->domain);
    outcome.errorCode = error->code;
    outcome.isOver = true;
    return TRUE;
}

void titleChanged(WebKitWebView* view, GParamSpec* /*property*/, gpointer data) {
    auto& outcome = *static_cast<Outcome*>(data);
    const char* title = webkit_web_view_get_title(view);
    outcome.title = title ? title : "";
    outcome.isOver = !outcome.title.empty();
}

/// Loads the URL in a `WebKitWebView` directly, without Platform's WebView.
Outcome load(const std::string& url) {
    gtk_init();
    const auto session = GObjectPtr<WebKitNetworkSession>::adopt(webkit_network_session_new_ephemeral());
    const auto view = GObjectPtr<WebKitWebView>::retain(
        WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session.get(), nullptr)));
    Outcome outcome;
    const Platform::SignalConnection failed(view.get(), "load-failed", G_CALLBACK(loadFailed), &outcome);
    const Platform::SignalConnection changed(view.get(), "notify::title", G_CALLBACK(titleChanged), &outcome);
    webkit_web_view_load_uri(view.get(), url.c_str());
    EXPECT_TRUE(runUntil([&] { return outcome.isOver; })) << url;
    return outcome;
}

class ProviderNetworkTest : public testing::Test {
protected:
    void SetUp() override {
        if (!network) {
            GTEST_SKIP() << "this system does not allow a network namespace";
        }
        server.emplace();
        server->route("/", HTTPResponse::page("Home"));
    }

    const ProviderNetwork* network = ProviderNetwork::current();
    std::optional<HTTPServer> server;
};

} // namespace

TEST_F(ProviderNetworkTest, theProvidersTrueHostIsServedOverTLS) {
    const TLSServer tls(network->identity(), server->port());
    EXPECT_EQ(load("https://appleid.apple.com/").title, "Home");
    EXPECT_EQ(server->requests("/").at(0).headers.at("host"), "appleid.apple.com");
    EXPECT_EQ(load("https://client.example/").title, "Home");
}

TEST_F(ProviderNetworkTest, anotherAuthoritysCertificateIsRefused) {
    const TLSServer tls(network->strangersIdentity(), server->port());
    const auto outcome = load("https://appleid.apple.com/");
    EXPECT_EQ(outcome.errorDomain, "g-tls-error-quark");
    EXPECT_EQ(outcome.errorCode, G_TLS_ERROR_BAD_CERTIFICATE);
    EXPECT_EQ(server->count("/"), 0U);
}

TEST_F(ProviderNetworkTest, aCertificateOfAnotherNameIsRefused) {
    const TLSServer tls(network->otherHostsIdentity(), server->port());
    EXPECT_EQ(load("https://appleid.apple.com/").errorCode, G_TLS_ERROR_BAD_CERTIFICATE);
    EXPECT_EQ(server->count("/"), 0U);
}

TEST_F(ProviderNetworkTest, nobodyListensUntilThereIsAServer) {
    const auto outcome = load("https://appleid.apple.com/");
    EXPECT_EQ(outcome.errorDomain, "g-io-error-quark");
    EXPECT_EQ(outcome.errorCode, G_IO_ERROR_CONNECTION_REFUSED);
}

TEST_F(ProviderNetworkTest, aServerMayResetItsConnections) {
    const TLSServer tls(network->identity(), server->port(), TLSServer::Manner::resets);
    const auto outcome = load("https://appleid.apple.com/");
    EXPECT_EQ(outcome.errorDomain, "g-tls-error-quark");
    EXPECT_EQ(outcome.errorCode, G_TLS_ERROR_NOT_TLS);
}

TEST_F(ProviderNetworkTest, otherHostsAreNotFound) {
    EXPECT_EQ(load("https://elsewhere.example/").errorDomain, "g-resolver-error-quark");
}
