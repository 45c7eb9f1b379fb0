#pragma once

#include "Keyloft/BrowserAction.h"
#include "Keyloft/BrowserWindowController.h"
#include "KeyloftBrowserKit/BookmarkStore.h"
#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/Foundation/URL.h"

#include <memory>
#include <optional>
#include <vector>

namespace Keyloft {

/// The application delegate. Owns the bookmarks and the open tabs, builds the main menu, and decides in which
/// tab or window a page opens.
class AppDelegate : public Platform::ApplicationDelegate,
                    public Platform::MenuDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
public:
    static std::shared_ptr<AppDelegate> create();

    /// `Keyloft/bookmarks.json` in the user's application support directory.
    static Platform::URL bookmarksFile();

    const std::shared_ptr<KeyloftBrowserKit::BookmarkStore>& bookmarks() const { return bookmarks_; }

    /// All open tabs, in opening order. This list keeps the tabs alive.
    const std::vector<std::shared_ptr<BrowserWindowController>>& controllers() const { return controllers_; }

    const std::shared_ptr<Platform::Menu>& bookmarksMenu() const { return bookmarksMenu_; }

    /// Opens and selects a new tab in the native window of `window`, or in a new native window if `window` is
    /// null. Without `url`, the tab is blank and its address field has the focus. Without `configuration`,
    /// the tab creates its own.
    std::shared_ptr<BrowserWindowController>
    openTab(const std::optional<Platform::URL>& url, const std::shared_ptr<Platform::Window>& window,
            const std::shared_ptr<Platform::WebViewConfiguration>& configuration);

    /// Returns the window for new tabs and externally opened URLs: the application's main window if it is a
    /// browser window, otherwise the window of the tab opened last. Returns null if no tab is open.
    std::shared_ptr<Platform::Window> frontBrowserWindow() const;

    std::shared_ptr<Platform::Menu> buildMainMenu();

    void applicationWillFinishLaunching() override;
    void applicationDidFinishLaunching() override;
    void applicationOpenURLs(const std::vector<Platform::URL>& urls) override;
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
    bool applicationShouldTerminateAfterLastWindowClosed() override { return false; }

    bool respondsTo(Platform::Action action) const override { return action == BrowserAction::newTab; }
    void perform(Platform::Action action, const Platform::ActionSender& sender) override;

    void menuNeedsUpdate(Platform::Menu& menu) override;

protected:
    AppDelegate();

private:
    /// Returns the front tab if it is empty, otherwise null. An externally opened URL loads in an empty front
    /// tab instead of a new tab.
    std::shared_ptr<BrowserWindowController> emptyTabInFront() const;

    std::shared_ptr<KeyloftBrowserKit::BookmarkStore> bookmarks_;
    std::vector<std::shared_ptr<BrowserWindowController>> controllers_;
    std::shared_ptr<Platform::Menu> bookmarksMenu_;
};

} // namespace Keyloft
