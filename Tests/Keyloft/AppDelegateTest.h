#pragma once

#include "Keyloft/AppDelegate.h"
#include "Tests/Keyloft/BrowserTest.h"

#include <memory>
#include <string>
#include <vector>

/// Fixture with an `AppDelegate` and its main menu, before the application has finished launching. The list
/// of bookmarks is empty.
class AppDelegateTest : public BrowserTest {
public:
    AppDelegateTest(const AppDelegateTest&) = delete;
    AppDelegateTest& operator=(const AppDelegateTest&) = delete;
    ~AppDelegateTest() override;

protected:
    AppDelegateTest();

    /// Finishes launching the application without URLs and returns the blank tab.
    Tab launch();
    /// Opens a page with the title `path` in a tab next to `beside`, or in a new window if `beside` is null.
    /// Waits until the page is loaded.
    Tab openPage(const std::string& path, const Tab& beside = nullptr);
    void openURLs(const std::vector<std::string>& urls);
    std::vector<Tab> controllers() const { return delegate->controllers(); }

    std::shared_ptr<Keyloft::AppDelegate> delegate;
};
