#include "Platform/WebKit/linux/WebProcessPlace.h"
#include "Tests/Keyloft/AppDelegateTest.h"
#include "Tests/Support/Setting.h"
#include "Tests/Support/WebProcesses.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

using namespace Platform;
using TestSupport::runUntil;
using TestSupport::Setting;

namespace {

/// More tabs than web processes.
class ManyTabsTest : public AppDelegateTest {
protected:
    /// The pages that were asked for at least once.
    std::ptrdiff_t loadedPages(const std::vector<std::string>& urls) const {
        return std::ranges::count_if(urls,
                                     [&](const auto& text) { return server.count(url(text).path()) > 0; });
    }

    static constexpr int limit = 4;
    Setting<int> lowLimit{webProcessLimit, limit};
};

} // namespace

TEST_F(ManyTabsTest, threeHundredAddressesAreTabsOfWhichEachLoadsAtTheLatestWhenItIsSeen) {
    std::vector<std::string> urls;
    for (int i = 0; i < 300; ++i) {
        urls.push_back(serverURL("/" + std::to_string(i)).absoluteString());
    }
    openURLs(urls);
    delegate->applicationDidFinishLaunching();
    const auto open = controllers();
    ASSERT_EQ(open.size(), urls.size());
    for (std::size_t i = 0; i < urls.size(); ++i) {
        ASSERT_TRUE(open[i]->webView()->url());
        EXPECT_EQ(open[i]->webView()->url()->absoluteString(), urls[i]);
        EXPECT_EQ(open[i]->addressField()->stringValue(), urls[i]);
    }
    EXPECT_TRUE(waitForTitle(open.back(), urls.back()));
    EXPECT_TRUE(runUntil([&] { return loadedPages(urls) == limit; }));
    for (const std::size_t i : {100U, 200U}) {
        EXPECT_EQ(open[i]->window()->title(), "127.0.0.1");
        EXPECT_EQ(server.count(url(urls[i]).path()), 0U);
        open[i]->window()->makeKeyAndOrderFront();
        EXPECT_TRUE(waitForTitle(open[i], urls[i]));
    }
    EXPECT_EQ(loadedPages(urls), limit + 2);
    EXPECT_TRUE(runUntil([] { return std::ssize(TestSupport::webProcesses()) == limit; }));
}

TEST_F(ManyTabsTest, aTabThatIsClosedMakesRoomForThePageOfAnother) {
    std::vector<std::string> urls;
    for (int i = 0; i < limit + 2; ++i) {
        urls.push_back(serverURL("/" + std::to_string(i)).absoluteString());
    }
    openURLs(urls);
    delegate->applicationDidFinishLaunching();
    EXPECT_TRUE(runUntil([&] { return loadedPages(urls) == limit; }));
    controllers().front()->window()->close();
    EXPECT_TRUE(runUntil([&] { return loadedPages(urls) == limit + 1; }));
}
