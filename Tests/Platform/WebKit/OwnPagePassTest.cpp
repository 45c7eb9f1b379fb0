#include "Platform/WebKit/OwnPagePass.h"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

namespace {

using Platform::NavigationAction;
using Platform::NavigationType;
using Platform::OwnPagePass;
using Platform::URL;

NavigationAction navigation(std::string_view url, NavigationType type = NavigationType::other) {
    NavigationAction action;
    action.url = URL::fromString(url);
    action.navigationType = type;
    return action;
}

/// Returns true if an `OwnPagePass` that is armed with the base URL `base` allows a navigation to `url`.
bool recognises(const char* base, std::string_view url) {
    OwnPagePass pass;
    pass.arm(base != nullptr ? URL::fromString(base) : std::nullopt);
    return pass.use(navigation(url), false);
}

TEST(OwnPagePass, recognisesTheBaseURLInAnySpelling) {
    EXPECT_TRUE(recognises("https://client.example", "https://client.example/"));
    EXPECT_TRUE(recognises("HTTPS://Client.Example:443/A%20b", "https://client.example/A%20b"));
    EXPECT_TRUE(recognises("https://user@client.example/?q#f", "https://client.example/"));
    EXPECT_TRUE(recognises("http://client.example:80", "http://client.example/"));
}

TEST(OwnPagePass, refusesEverythingElse) {
    for (const auto* other : {"http://client.example/a", "https://client.example.test/a",
                              "https://client.example:444/a", "https://client.example/A",
                              "https://client.example/a/", "https://client.example/", "about:blank"}) {
        EXPECT_FALSE(recognises("https://client.example/a", other)) << other;
    }
    EXPECT_FALSE(recognises("https://%FF/", "https://%FE/")) << "hosts that cannot be decoded";
}

TEST(OwnPagePass, recognisesABlankPageWithoutABaseURL) {
    EXPECT_TRUE(recognises(nullptr, "about:blank"));
    EXPECT_FALSE(recognises(nullptr, "about:srcdoc"));
    EXPECT_FALSE(recognises(nullptr, "https://client.example/"));
}

TEST(OwnPagePass, takesARelativeBaseForNone) {
    OwnPagePass pass;
    EXPECT_EQ(pass.arm(URL::fromString("not a url")), std::nullopt);
    EXPECT_TRUE(pass.use(navigation("about:blank"), false));
    EXPECT_EQ(pass.arm(URL::fromString("a:b")), URL::fromString("a:b"));
}

TEST(OwnPagePass, isForOneNavigation) {
    OwnPagePass pass;
    EXPECT_FALSE(pass.use(navigation("about:blank"), false)) << "not armed";
    pass.arm(std::nullopt);
    EXPECT_TRUE(pass.use(navigation("about:blank"), false));
    EXPECT_FALSE(pass.use(navigation("about:blank"), false));
}

TEST(OwnPagePass, staysArmedWhileOthersAreRefused) {
    OwnPagePass pass;
    pass.arm(std::nullopt);
    EXPECT_FALSE(pass.use(navigation("about:blank"), true)) << "a redirect";
    EXPECT_FALSE(pass.use(navigation("about:blank", NavigationType::linkActivated), false));
    EXPECT_FALSE(pass.use(NavigationAction(), false)) << "no URL";
    EXPECT_TRUE(pass.use(navigation("about:blank"), false));
}

TEST(OwnPagePass, endsWhenDisarmed) {
    OwnPagePass pass;
    pass.arm(std::nullopt);
    pass.disarm();
    EXPECT_FALSE(pass.use(navigation("about:blank"), false));
}

} // namespace
