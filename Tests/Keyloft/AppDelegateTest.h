#pragma once

#include "Keyloft/AppDelegate.h"
#include "Tests/Keyloft/BrowserTest.h"

#include <memory>
#include <string>
#include <vector>

/// The application's delegate with its menu bar, before it finished launching, and no bookmarks.
class AppDelegateTest : public BrowserTest {
public:
    AppDelegateTest(const AppDelegateTest&) = delete;
    AppDelegateTest& operator=(const AppDelegateTest&) = delete;
    ~AppDelegateTest() override;

protected:
    AppDelegateTest();

    /// Launches without URLs and returns the blank tab.
    Tab launch();
    /// Opens a tab that is not blank beside another, or in a window of its own.
    Tab openPage(const std::string& path, const Tab& beside = nullptr);
    void openURLs(const std::vector<std::string>& urls);
    std::vector<Tab> controllers() const { return delegate->controllers(); }

    std::shared_ptr<Keyloft::AppDelegate> delegate;
};
