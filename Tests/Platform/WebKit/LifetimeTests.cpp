#include "Tests/Platform/WebKit/WebViewFixture.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

class WebViewLifetime : public WebViewTest {
protected:
    static std::ptrdiff_t openDescriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    }
};

} // namespace

TEST_F(WebViewLifetime, aHundredViewsLeaveNothingBehind) {
    constexpr std::size_t count = 100;
    server.route("/page", HTTPResponse::page("Page"));
    // The first view makes what stays for good.
    {
        const auto view = makeView();
        ASSERT_TRUE(loadPage(*view, "/first"));
    }
    ASSERT_TRUE(runUntil([] { return webProcesses().size() <= 1; }));
    const auto processes = webProcesses().size();
    const auto descriptors = openDescriptors();

    std::vector<gpointer> widgets(count);
    for (std::size_t index = 0; index < count; ++index) {
        auto view = makeView();
        widgets[index] = widgetOf(*view);
        g_object_add_weak_pointer(G_OBJECT(widgets[index]), &widgets[index]);
        const auto observation = view->observe(Property::title, [] {});
        // Some while they load, some when they have, most of them untouched.
        if (index % 20 == 0) {
            view->load(request(server.url("/page")));
            if (index % 40 == 0) {
                ASSERT_TRUE(waitForTitle(*view, "Page"));
            }
        }
    }
    EXPECT_TRUE(runUntil([&] {
        return std::ranges::all_of(widgets, [](gpointer widget) { return widget == nullptr; });
    })) << std::ranges::count_if(widgets, [](gpointer widget) { return widget != nullptr; })
        << " widgets are left";
    EXPECT_TRUE(runUntil([&] { return webProcesses().size() <= processes; })) << webProcesses().size();
    EXPECT_TRUE(runUntil([&] { return openDescriptors() <= descriptors; }))
        << openDescriptors() << " descriptors after " << descriptors;
}

TEST_F(WebViewLifetime, aViewInAWindowGoesWithIt) {
    auto view = makeView();
    gpointer widget = widgetOf(*view);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    {
        TestWindow window(*view);
        window.show();
        ASSERT_TRUE(loadPage(*view, "/page"));
        view.reset();
        TestSupport::runPending();
        EXPECT_NE(widget, nullptr) << "the toolkit holds it still";
    }
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
}

TEST_F(WebViewLifetime, theSandboxStaysOn) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    const auto processes = webProcesses();
    ASSERT_EQ(processes.size(), 1U);
    const auto root = [](const std::string& process) {
        return std::filesystem::read_symlink("/proc/" + process + "/ns/mnt");
    };
    EXPECT_NE(root(std::to_string(processes[0])), root("self"));
}
