#include "Platform/Foundation/URLEndpoint.h"

#include "Tests/Support/Present.h"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

namespace {

using Platform::URL;
using Platform::URLEndpoint;
using TestSupport::present;

std::optional<URLEndpoint> endpointOf(std::string_view text) {
    return URLEndpoint::of(present(URL::fromString(text)));
}

TEST(URLEndpoint, isTheTargetWithoutCredentialsQueryAndFragment) {
    EXPECT_EQ(endpointOf("https://u:p@%68.test:8/%61?q#f"),
              (URLEndpoint{.scheme = "https", .host = "h.test", .port = 8, .path = "/a"}));
    EXPECT_EQ(endpointOf("HTTPS://H.test/A"),
              (URLEndpoint{.scheme = "HTTPS", .host = "H.test", .port = std::nullopt, .path = "/A"}));
}

TEST(URLEndpoint, hasDefaultsForAnEmptyPathAndAbsentPort) {
    EXPECT_EQ(endpointOf("https://h"),
              (URLEndpoint{.scheme = "https", .host = "h", .port = 443, .path = "/"}));
    EXPECT_EQ(endpointOf("http://h:"), (URLEndpoint{.scheme = "http", .host = "h", .port = 80, .path = "/"}));
    EXPECT_EQ(endpointOf("s://h"),
              (URLEndpoint{.scheme = "s", .host = "h", .port = std::nullopt, .path = "/"}));
}

TEST(URLEndpoint, isAbsentIfAPartCannotBeRead) {
    for (const auto* const text :
         {"s://%FF", "s://h/%FF", "s://h:9223372036854775808", "//h:9223372036854775808",
          "s://u:p@h:9223372036854775808/", "s://[::1]:9223372036854775808?", "s://h:9223372036854775808#"}) {
        EXPECT_EQ(endpointOf(text), std::nullopt) << text;
    }
}

TEST(URLEndpoint, onlyTheAuthoritysLastColonBeginsAPort) {
    for (const auto* const text :
         {"s:a:9223372036854775808", "a/b:9223372036854775808", "s://h/:9223372036854775808",
          "s://h?:9223372036854775808", "s://h#:9223372036854775808", "s://u:9223372036854775808@h",
          "s://[::1]"}) {
        EXPECT_NE(endpointOf(text), std::nullopt) << text;
    }
}

} // namespace
