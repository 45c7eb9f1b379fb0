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

/// The browser's top: owns the bookmarks and the open tabs, builds the main menu, and decides where a page
/// opens.
class AppDelegate : public Platform::ApplicationDelegate,
                    public Platform::MenuDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
public:
    static std::shared_ptr<AppDelegate> create();

    /// `Keyloft/bookmarks.json` in the user's application support directory.
    static Platform::URL bookmarksFile();

    const std::shared_ptr<KeyloftBrowserKit::BookmarkStore>& bookmarks() const { return bookmarks_; }

    /// Every open tab, in the order of opening. This list is what keeps a tab alive.
    const std::vector<std::shared_ptr<BrowserWindowController>>& controllers() const { return controllers_; }

    const std::shared_ptr<Platform::Menu>& bookmarksMenu() const { return bookmarksMenu_; }

    /// Opens a tab: in `window`'s window, or in a new one. Without a URL the tab is blank and its address
    /// field selected.
    std::shared_ptr<BrowserWindowController>
    openTab(const std::optional<Platform::URL>& url, const std::shared_ptr<Platform::Window>& window,
            const std::shared_ptr<Platform::WebViewConfiguration>& configuration);

    /// The window that new tabs and handed-over URLs go to.
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
    /// The tab that a handed-over URL fills rather than open another.
    std::shared_ptr<BrowserWindowController> emptyTabInFront() const;

    std::shared_ptr<KeyloftBrowserKit::BookmarkStore> bookmarks_;
    std::vector<std::shared_ptr<BrowserWindowController>> controllers_;
    std::shared_ptr<Platform::Menu> bookmarksMenu_;
};

} // namespace Keyloft
