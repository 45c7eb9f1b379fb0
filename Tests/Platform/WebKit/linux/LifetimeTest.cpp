#include "Tests/Platform/WebKit/linux/WebViewFixture.h"
#include "Tests/Support/WebProcesses.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;
using TestSupport::webProcesses;

namespace {

class WebViewLifetime : public WebViewTest {
protected:
    /// Creates `count` views and releases each of them: a few while they are loading, a few after they have
    /// loaded, and most of them unused.
    void makeAndLetGo(std::size_t count) {
        std::vector<gpointer> widgets(count);
        for (std::size_t index = 0; index < count; ++index) {
            const auto view = makeView();
            widgets[index] = widgetOf(*view);
            g_object_add_weak_pointer(G_OBJECT(widgets[index]), &widgets[index]);
            const auto observation = view->observe(Property::title, [] {});
            if (index % 10 == 0) {
                view->load(request(server.url("/page")));
            }
            if (index % 20 == 0) {
                ASSERT_TRUE(waitForTitle(*view, "Page"));
            }
        }
        const auto left = [&widgets] {
            return std::ranges::count_if(widgets, [](gpointer widget) { return widget != nullptr; });
        };
        EXPECT_TRUE(runUntil([&left] { return left() == 0; })) << left() << " widgets are left";
    }

    static std::ptrdiff_t openDescriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    }
};

} // namespace

TEST_F(WebViewLifetime, aHundredViewsLeaveNothingBehind) {
    server.route("/page", HTTPResponse::page("Page"));
    // Create some views first, so that objects that WebKitGTK caches are not counted as leaks.
    makeAndLetGo(20);
    ASSERT_TRUE(runUntil([] { return webProcesses().size() <= 1; })) << webProcesses().size();
    const auto processes = webProcesses().size();
    const auto descriptors = openDescriptors();

    makeAndLetGo(100);
    EXPECT_TRUE(runUntil([&] { return webProcesses().size() <= processes; })) << webProcesses().size();
    // Allow a few additional file descriptors, because WebKitGTK keeps connections to its processes open for
    // a while. A leak would leave one file descriptor for each of the 100 views.
    EXPECT_TRUE(runUntil([&] { return openDescriptors() < descriptors + 20; }))
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
        EXPECT_NE(widget, nullptr) << "GTK still holds a reference";
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
