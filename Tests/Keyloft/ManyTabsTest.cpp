#include "Platform/WebKit/linux/WebViewConfigurationNative.h"
#include "Tests/Keyloft/AppDelegateTest.h"
#include "Tests/Support/WebProcesses.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

using namespace Platform;
using TestSupport::runUntil;

namespace {

/// Opens more tabs than the maximum number of web processes.
class ManyTabsTest : public AppDelegateTest {
protected:
    /// Opens `count` tabs in one window without waiting for their pages to load. Each tab has a different
    /// page. Returns the URLs of the pages.
    std::vector<std::string> openTabs(int count) {
        std::vector<std::string> urls;
        for (int i = 0; i < count; ++i) {
            const URL page = serverURL("/" + std::to_string(i));
            urls.push_back(page.absoluteString());
            server.route(page.path(), TestSupport::HTTPResponse::page(urls.back()));
            const auto configuration = WebViewConfiguration::create();
            configuration->native().slots = slots;
            delegate->openTab(page, delegate->frontBrowserWindow(), configuration);
        }
        return urls;
    }

    /// The number of pages that were requested at least once.
    std::ptrdiff_t loadedPages(const std::vector<std::string>& urls) const {
        return std::ranges::count_if(urls,
                                     [&](const auto& text) { return server.count(url(text).path()) > 0; });
    }

    static constexpr int limit = 4;
    const std::shared_ptr<WebProcessSlots> slots = std::make_shared<WebProcessSlots>(limit, 10);
};

} // namespace

TEST_F(ManyTabsTest, threeHundredAddressesAreTabsOfWhichEachLoadsAtTheLatestWhenItIsSeen) {
    const auto urls = openTabs(300);
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
    const auto urls = openTabs(limit + 2);
    EXPECT_TRUE(runUntil([&] { return loadedPages(urls) == limit; }));
    controllers().front()->window()->close();
    EXPECT_TRUE(runUntil([&] { return loadedPages(urls) == limit + 1; }));
}
