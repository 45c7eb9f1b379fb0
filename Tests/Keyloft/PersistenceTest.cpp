#include "Tests/Support/Display.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/linux/Xdotool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using TestSupport::askXdotool;
using TestSupport::eventually;
using TestSupport::HTTPResponse;
using TestSupport::Program;

/// Tests the data that the real program keeps between several runs by the same user.
class PersistenceTest : public testing::Test {
public:
    PersistenceTest(const PersistenceTest&) = delete;
    PersistenceTest& operator=(const PersistenceTest&) = delete;
    ~PersistenceTest() override = default;

protected:
    PersistenceTest() { TestSupport::startWindowManager(); }

    /// Adds a page that runs `script` and then sends the value of the expression `report` to the server. If
    /// `cookie` is not empty, the response has a Set-Cookie header with this value.
    void route(const std::string& path, const std::string& script, const std::string& report,
               const std::string& cookie = "") {
        auto response =
            HTTPResponse::html("<title>" + path + "</title><script>" + script + ";new Image().src = '" +
                               path + "-report?' + encodeURIComponent(" + report + ")</script>");
        if (!cookie.empty()) {
            response.headers.emplace_back("Set-Cookie", cookie);
        }
        server.route(path, response);
    }

    /// Starts the program with the URL of the page at `path`, waits for the page's report, and presses Ctrl+Q
    /// to quit the program. Returns the report, percent-encoded.
    std::string run(const std::string& path) {
        Program program(KEYLOFT_PROGRAM, {server.url(path)});
        EXPECT_TRUE(eventually([&] { return server.count(path + "-report") == 1; })) << program.errors();
        EXPECT_TRUE(TestSupport::waitForFocus(path));
        askXdotool("key ctrl+q");
        EXPECT_EQ(program.waitForExit(), 0) << program.errors();
        const auto reports = server.requests(path + "-report");
        return reports.empty() ? "" : reports.front().query;
    }

    static std::filesystem::perms permissions(const char* directoryVariable) {
        return std::filesystem::status(std::filesystem::path(std::getenv(directoryVariable)) /
                                       "velde.orvane.keyloft")
            .permissions();
    }

    TestSupport::HTTPServer server;
};

TEST_F(PersistenceTest, aCookieWithAnExpiryAndAnItemOfLocalStorageAreThereInTheNextRun) {
    route("/keep",
          "document.cookie = 'passing=yes'; localStorage.kept = 'yes'; sessionStorage.passing = 'yes'",
          "document.cookie.split('; ').sort().join()", "lasting=yes; Max-Age=3600");
    route("/look", "", "document.cookie + ' ' + localStorage.kept + ' ' + sessionStorage.passing");
    EXPECT_EQ(run("/keep"), "lasting%3Dyes%2Cpassing%3Dyes");
    EXPECT_EQ(run("/look"), "lasting%3Dyes%20yes%20undefined");
    const auto requests = server.requests("/look");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].headers.at("cookie"), "lasting=yes");
}

TEST_F(PersistenceTest, whatTheEngineKeepsOnlyTheUserMayEnter) {
    route("/page", "", "'here'");
    run("/page");
    EXPECT_EQ(permissions("XDG_DATA_HOME"), std::filesystem::perms::owner_all);
    EXPECT_EQ(permissions("XDG_CACHE_HOME"), std::filesystem::perms::owner_all);
}

} // namespace
