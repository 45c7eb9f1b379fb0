#pragma once

#include "Keyloft/ProgressBar.h"
#include "KeyloftBrowserKit/BookmarkStore.h"
#include "Platform/AppKit/Button.h"
#include "Platform/AppKit/StackView.h"
#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/WindowController.h"
#include "Platform/Foundation/Observation.h"
#include "Platform/Foundation/URL.h"
#include "Platform/WebKit/WebView.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Keyloft {

/// Controls one browser tab: a window that contains the toolbar, the bookmarks bar and the page. AppDelegate
/// keeps the controller alive until the window closes.
class BrowserWindowController : public Platform::WindowController,
                                public Platform::WindowDelegate,
                                public Platform::TextFieldDelegate,
                                public Platform::NavigationDelegate,
                                public Platform::UIDelegate {
public:
    /// For a window opened by a page, pass the configuration that `createWebView` received. If
    /// `configuration` is null, the tab creates its own.
    static std::shared_ptr<BrowserWindowController>
    create(std::shared_ptr<KeyloftBrowserKit::BookmarkStore> bookmarks,
           std::shared_ptr<Platform::WebViewConfiguration> configuration);

    /// Called when the window is about to close.
    std::function<void()> onClose;
    /// Called to open a tab in the native window of this controller. Returns the controller of the new tab,
    /// or null if the tab cannot be opened.
    std::function<std::shared_ptr<BrowserWindowController>(
        const std::optional<Platform::URL>& url,
        const std::shared_ptr<Platform::WebViewConfiguration>& configuration)>
        onNewTab;

    void load(const Platform::URL& url);

    /// The URL of the page. Absent if no page is loaded or the URL is "about:blank".
    std::optional<Platform::URL> pageURL() const;
    /// The title of the page. Absent if the title is empty.
    std::optional<std::string> pageTitle() const;
    bool isBookmarked() const;
    /// Returns true if nothing was ever loaded and nothing is loading. A tab that shows "about:blank" is not
    /// empty.
    bool isEmptyTab() const;
    /// Returns true while the user edits the address field, starting with the first change to its text.
    bool isEditingAddress() const { return isEditingAddress_; }

    const std::shared_ptr<Platform::WebView>& webView() const { return webView_; }
    const std::shared_ptr<Platform::Button>& backButton() const { return backButton_; }
    const std::shared_ptr<Platform::Button>& forwardButton() const { return forwardButton_; }
    const std::shared_ptr<Platform::Button>& reloadButton() const { return reloadButton_; }
    const std::shared_ptr<Platform::TextField>& addressField() const { return addressField_; }
    const std::shared_ptr<Platform::Button>& bookmarkButton() const { return bookmarkButton_; }
    const std::shared_ptr<Platform::SearchField>& searchField() const { return searchField_; }
    const std::shared_ptr<Platform::StackView>& bookmarksBar() const { return bookmarksBar_; }
    const std::shared_ptr<ProgressBar>& progressBar() const { return progressBar_; }

    void focusAddressBar();
    void navigateFromAddressField();
    void searchFromSearchField();
    void goBack();
    void goForward();
    void stopLoading();
    void reload(const Platform::ActionSender& sender);
    void toggleBookmark();
    void openBookmark(const Platform::ActionSender& sender);
    void newWindowForTab();
    void rebuildBookmarksBar();

    bool respondsTo(Platform::Action action) const override;
    void perform(Platform::Action action, const Platform::ActionSender& sender) override;
    bool validateMenuItem(Platform::MenuItem& item) override;

    void controlTextDidBeginEditing(Platform::TextField& field) override;
    void controlTextDidEndEditing(Platform::TextField& field, Platform::TextMovement movement) override;

    void windowWillClose(Platform::Window& window) override;

    void didFailNavigation(Platform::WebView& webView, const Platform::Error& error) override;
    void didFailProvisionalNavigation(Platform::WebView& webView, const Platform::Error& error) override;

    std::shared_ptr<Platform::WebView>
    createWebView(Platform::WebView& webView,
                  const std::shared_ptr<Platform::WebViewConfiguration>& configuration,
                  const Platform::NavigationAction& action) override;
    void runJavaScriptAlertPanel(Platform::WebView& webView, const std::string& message,
                                 const Platform::FrameInfo& frame, std::function<void()> completion) override;
    void runJavaScriptConfirmPanel(Platform::WebView& webView, const std::string& message,
                                   const Platform::FrameInfo& frame,
                                   std::function<void(bool)> completion) override;

protected:
    BrowserWindowController(std::shared_ptr<KeyloftBrowserKit::BookmarkStore> bookmarks,
                            const std::shared_ptr<Platform::WebViewConfiguration>& configuration);

private:
    using Handler = void (*)(BrowserWindowController& self, const Platform::ActionSender& sender);
    /// The handlers of all actions that the controller responds to.
    static const std::map<Platform::Action, Handler>& handlers();

    /// Second stage of construction: creates the window and its content, and sets up delegates, targets and
    /// observations, which need `shared_from_this`.
    void assemble();
    void buildContent();
    std::shared_ptr<Platform::StackView> buildToolbar();
    void observeWebView();
    void observe(Platform::WebView::Property property, void (BrowserWindowController::*changed)());

    void titleChanged();
    void urlChanged();
    void canGoBackChanged();
    void canGoForwardChanged();
    void progressChanged();
    void loadingChanged();

    void updateWindowTitle();
    void updateBookmarkButton();
    void showURLInAddressField();
    void showLoadError(const Platform::Error& error);

    std::shared_ptr<KeyloftBrowserKit::BookmarkStore> bookmarks_;
    std::shared_ptr<Platform::WebView> webView_;
    std::shared_ptr<Platform::Button> backButton_;
    std::shared_ptr<Platform::Button> forwardButton_;
    std::shared_ptr<Platform::Button> reloadButton_;
    std::shared_ptr<Platform::TextField> addressField_;
    std::shared_ptr<Platform::SearchField> searchField_;
    std::shared_ptr<Platform::Button> bookmarkButton_;
    std::shared_ptr<Platform::StackView> bookmarksBar_;
    std::shared_ptr<ProgressBar> progressBar_;
    std::vector<Platform::Observation> observations_;
    Platform::Observation bookmarksObservation_;
    bool isEditingAddress_ = false;
};

} // namespace Keyloft
