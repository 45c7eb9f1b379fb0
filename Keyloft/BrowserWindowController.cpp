#include "Keyloft/BrowserWindowController.h"

#include "Keyloft/BrowserAction.h"
#include "KeyloftBrowserKit/AddressInput.h"
#include "Platform/AppKit/Alert.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/View.h"
#include "Platform/Foundation/MakeShared.h"

#include <array>
#include <utility>

namespace Keyloft {

using KeyloftBrowserKit::AddressInput;
using KeyloftBrowserKit::Bookmark;
using KeyloftBrowserKit::BookmarkStore;
using Platform::Action;
using Platform::ActionSender;
using Platform::Alert;
using Platform::Button;
using Platform::Image;
using Platform::Orientation;
using Platform::StackView;
using Platform::URL;
using Platform::WebView;
using Platform::Window;

namespace {

constexpr const char* tabbingIdentifier = "velde.orvane.keyloft.browser";
constexpr const char* untitled = "New Tab";
constexpr double requestTimeout = 60;

const Image reloadImage{"arrow.clockwise", "Reload"};
const Image stopImage{"xmark", "Stop"};
const Image addBookmarkImage{"bookmark", "Bookmark this page"};
const Image removeBookmarkImage{"bookmark.fill", "Remove bookmark"};

void configureToolbarButton(Button& button, const Image& image,
                            const std::weak_ptr<Platform::Responder>& target, Action action) {
    button.setImage(image);
    button.setBezelStyle(Button::BezelStyle::texturedRounded);
    button.setBordered(true);
    button.setTarget(target, action);
    button.setToolTip(image.accessibilityDescription);
}

/// Returns the title of a JavaScript panel: the host of the frame, or `fallback` if the frame has no host.
std::string panelTitle(const Platform::FrameInfo& frame, const char* fallback) {
    return (frame.url ? frame.url->host() : std::nullopt).value_or(fallback);
}

} // namespace

BrowserWindowController::BrowserWindowController(
    std::shared_ptr<BookmarkStore> bookmarks,
    const std::shared_ptr<Platform::WebViewConfiguration>& configuration)
    : WindowController("BrowserWindowController")
    , bookmarks_(std::move(bookmarks))
    , backButton_(Button::create())
    , forwardButton_(Button::create())
    , reloadButton_(Button::create())
    , addressField_(Platform::TextField::create())
    , searchField_(Platform::SearchField::create())
    , bookmarkButton_(Button::create())
    , bookmarksBar_(
          StackView::create(Orientation::horizontal, 2, {.top = 0, .left = 8, .bottom = 4, .right = 8}))
    , progressBar_(ProgressBar::create()) {
    // Share cookies and storage among all tabs and pop-up windows.
    configuration->setWebsiteDataStore(Platform::WebsiteDataStore::defaultStore);
    webView_ = WebView::create(configuration);
}

std::shared_ptr<BrowserWindowController>
BrowserWindowController::create(std::shared_ptr<BookmarkStore> bookmarks,
                                std::shared_ptr<Platform::WebViewConfiguration> configuration) {
    if (!configuration) {
        configuration = Platform::WebViewConfiguration::create();
    }
    auto controller = Platform::makeShared<BrowserWindowController>(std::move(bookmarks), configuration);
    controller->assemble();
    return controller;
}

void BrowserWindowController::assemble() {
    const auto self = std::static_pointer_cast<BrowserWindowController>(shared_from_this());
    const auto window = Window::create({.width = 1100, .height = 760},
                                       {.closable = true, .miniaturizable = true, .resizable = true});
    window->setTabbingIdentifier(tabbingIdentifier);
    window->setMinSize({.width = 480, .height = 320});
    window->setTitle(untitled);
    window->center();
    window->setFrameAutosaveName("BrowserWindow");
    setWindow(window);
    window->setDelegate(self);

    buildContent();
    observeWebView();
    bookmarksObservation_ = Platform::NotificationCenter::defaultCenter().addObserver(
        BookmarkStore::didChange, bookmarks_.get(),
        [weak = std::weak_ptr(self)](const Platform::Notification& /*notification*/) {
            if (const auto controller = weak.lock()) {
                controller->rebuildBookmarksBar();
            }
        });
}

void BrowserWindowController::buildContent() {
    const auto self = std::static_pointer_cast<BrowserWindowController>(shared_from_this());
    const auto toolbar = buildToolbar();

    bookmarksBar_->setAccessibilityLabel("Bookmarks bar");
    rebuildBookmarksBar();

    const auto separator = Platform::Box::createSeparator();

    webView_->setNavigationDelegate(self);
    webView_->setUIDelegate(self);
    webView_->setAllowsBackForwardNavigationGestures(true);
    webView_->setExpands(Orientation::vertical);

    progressBar_->setFixedLength(2, Orientation::vertical);

    const auto column = StackView::create(Orientation::vertical, 0);
    const std::array<std::shared_ptr<Platform::View>, 5> rows = {toolbar, bookmarksBar_, separator,
                                                                 progressBar_, webView_};
    for (const auto& row : rows) {
        column->addArrangedSubview(row);
    }
    column->setFillsSuperview();
    window()->contentView()->addSubview(column);
}

std::shared_ptr<StackView> BrowserWindowController::buildToolbar() {
    const auto self = std::static_pointer_cast<BrowserWindowController>(shared_from_this());
    configureToolbarButton(*backButton_, {"chevron.left", "Back"}, self, BrowserAction::goBack);
    configureToolbarButton(*forwardButton_, {"chevron.right", "Forward"}, self, BrowserAction::goForward);
    configureToolbarButton(*reloadButton_, reloadImage, self, BrowserAction::reload);
    configureToolbarButton(*bookmarkButton_, addBookmarkImage, self, BrowserAction::toggleBookmark);
    backButton_->setEnabled(false);
    forwardButton_->setEnabled(false);

    addressField_->setPlaceholder("Enter a URL or search");
    addressField_->setFont({14});
    addressField_->setDelegate(self);
    addressField_->setTarget(self, BrowserAction::navigateFromAddressField);
    addressField_->setAccessibilityLabel("Address");
    addressField_->setExpands(Orientation::horizontal);

    searchField_->setPlaceholder("Search DuckDuckGo");
    searchField_->setTarget(self, BrowserAction::searchFromSearchField);
    searchField_->setAccessibilityLabel("Search DuckDuckGo");
    searchField_->setFixedLength(220, Orientation::horizontal);

    auto toolbar =
        StackView::create(Orientation::horizontal, 6, {.top = 8, .left = 10, .bottom = 6, .right = 10});
    const std::array<std::shared_ptr<Platform::View>, 6> controls = {
        backButton_, forwardButton_, reloadButton_, addressField_, bookmarkButton_, searchField_};
    for (const auto& control : controls) {
        toolbar->addArrangedSubview(control);
    }
    return toolbar;
}

void BrowserWindowController::observeWebView() {
    using Property = WebView::Property;
    observe(Property::title, &BrowserWindowController::titleChanged);
    observe(Property::url, &BrowserWindowController::urlChanged);
    observe(Property::canGoBack, &BrowserWindowController::canGoBackChanged);
    observe(Property::canGoForward, &BrowserWindowController::canGoForwardChanged);
    observe(Property::estimatedProgress, &BrowserWindowController::progressChanged);
    observe(Property::isLoading, &BrowserWindowController::loadingChanged);
}

void BrowserWindowController::observe(WebView::Property property,
                                      void (BrowserWindowController::*changed)()) {
    const std::weak_ptr weak = std::static_pointer_cast<BrowserWindowController>(shared_from_this());
    observations_.push_back(webView_->observe(property, [weak, changed] {
        if (const auto controller = weak.lock()) {
            (controller.get()->*changed)();
        }
    }));
}

void BrowserWindowController::titleChanged() { updateWindowTitle(); }

void BrowserWindowController::urlChanged() {
    if (!isEditingAddress_) {
        showURLInAddressField();
    }
    updateWindowTitle();
    updateBookmarkButton();
}

void BrowserWindowController::canGoBackChanged() { backButton_->setEnabled(webView_->canGoBack()); }

void BrowserWindowController::canGoForwardChanged() { forwardButton_->setEnabled(webView_->canGoForward()); }

void BrowserWindowController::progressChanged() {
    progressBar_->setProgress(webView_->estimatedProgress());
    progressBar_->setNeedsLayout();
}

void BrowserWindowController::loadingChanged() {
    const bool loading = webView_->isLoading();
    progressBar_->setActive(loading);
    progressBar_->fill()->setHidden(!loading);
    progressBar_->setNeedsLayout();
    reloadButton_->setImage(loading ? stopImage : reloadImage);
}

void BrowserWindowController::updateWindowTitle() {
    if (!window()) {
        return;
    }
    if (const auto title = pageTitle()) {
        window()->setTitle(*title);
        return;
    }
    const auto url = pageURL();
    window()->setTitle((url ? url->host() : std::nullopt).value_or(untitled));
}

void BrowserWindowController::updateBookmarkButton() {
    bookmarkButton_->setImage(isBookmarked() ? removeBookmarkImage : addBookmarkImage);
}

void BrowserWindowController::showURLInAddressField() {
    const auto url = pageURL();
    addressField_->setStringValue(url ? url->absoluteString() : "");
}

std::optional<URL> BrowserWindowController::pageURL() const {
    auto url = webView_->url();
    if (url && url->absoluteString() == "about:blank") {
        return std::nullopt;
    }
    return url;
}

std::optional<std::string> BrowserWindowController::pageTitle() const {
    auto title = webView_->title();
    if (title && title->empty()) {
        return std::nullopt;
    }
    return title;
}

bool BrowserWindowController::isBookmarked() const {
    const auto url = pageURL();
    return url && bookmarks_->contains(*url);
}

bool BrowserWindowController::isEmptyTab() const { return !webView_->url() && !webView_->isLoading(); }

void BrowserWindowController::load(const URL& url) {
    webView_->load({.url = url, .timeoutInterval = requestTimeout});
    window()->makeFirstResponder(webView_);
}

void BrowserWindowController::controlTextDidBeginEditing(Platform::TextField& /*field*/) {
    isEditingAddress_ = true;
}

void BrowserWindowController::controlTextDidEndEditing(Platform::TextField& /*field*/,
                                                       Platform::TextMovement movement) {
    isEditingAddress_ = false;
    // If editing ended because the user pressed Return, the field's action navigates to the typed text, so do
    // not replace the text.
    if (movement != Platform::TextMovement::returnKey) {
        showURLInAddressField();
    }
}

void BrowserWindowController::focusAddressBar() { addressField_->selectText(); }

void BrowserWindowController::navigateFromAddressField() {
    if (const auto url = AddressInput::resolve(addressField_->stringValue())) {
        load(*url);
    }
}

void BrowserWindowController::searchFromSearchField() {
    if (const auto url = AddressInput::search(searchField_->stringValue())) {
        load(*url);
    }
}

void BrowserWindowController::goBack() { webView_->goBack(); }

void BrowserWindowController::goForward() { webView_->goForward(); }

void BrowserWindowController::stopLoading() { webView_->stopLoading(); }

void BrowserWindowController::reload(const ActionSender& sender) {
    // While a page is loading, the toolbar button stops the load, whereas the menu item and its key
    // equivalent reload the page.
    if (webView_->isLoading() && sender.control == reloadButton_.get()) {
        webView_->stopLoading();
    } else if (!webView_->url()) {
        navigateFromAddressField();
    } else {
        webView_->reload();
    }
}

void BrowserWindowController::toggleBookmark() {
    const auto url = pageURL();
    if (!url) {
        return;
    }
    if (isBookmarked()) {
        bookmarks_->remove(*url);
        return;
    }
    auto title = pageTitle();
    if (!title) {
        title = url->host();
    }
    bookmarks_->add({.title = title.value_or(url->absoluteString()), .url = *url});
}

void BrowserWindowController::openBookmark(const ActionSender& sender) {
    std::optional<URL> url;
    if (sender.menuItem) {
        url = sender.menuItem->representedURL();
    } else if (sender.control) {
        url = sender.control->representedURL();
    }
    if (url) {
        load(*url);
    }
}

void BrowserWindowController::newWindowForTab() {
    if (onNewTab) {
        onNewTab(std::nullopt, nullptr);
    }
}

void BrowserWindowController::rebuildBookmarksBar() {
    const auto self = std::static_pointer_cast<BrowserWindowController>(shared_from_this());
    const auto shown = bookmarksBar_->arrangedSubviews();
    for (const auto& view : shown) {
        view->removeFromSuperview();
    }
    for (const Bookmark& bookmark : bookmarks_->bookmarks()) {
        const auto button = Button::create(bookmark.titleInOneLine(), self, BrowserAction::openBookmark);
        button->setBezelStyle(Button::BezelStyle::recessed);
        button->setBordered(false);
        button->setFont({12});
        button->setToolTip(bookmark.url.absoluteString());
        button->setRepresentedURL(bookmark.url);
        bookmarksBar_->addArrangedSubview(button);
    }
    // Add a spacer that fills the remaining space, so that the bookmark buttons stay at the leading edge.
    const auto spacer = Platform::View::create();
    spacer->setExpands(Orientation::horizontal);
    bookmarksBar_->addArrangedSubview(spacer);
    updateBookmarkButton();
}

bool BrowserWindowController::respondsTo(Action action) const { return handlers().contains(action); }

void BrowserWindowController::perform(Action action, const ActionSender& sender) {
    if (const auto handler = handlers().find(action); handler != handlers().end()) {
        handler->second(*this, sender);
    }
}

const std::map<Action, BrowserWindowController::Handler>& BrowserWindowController::handlers() {
    using Self = BrowserWindowController;
    using Sender = ActionSender;
    static const std::map<Action, Handler> table = {
        {BrowserAction::focusAddressBar,
         [](Self& self, const Sender& /*sender*/) { self.focusAddressBar(); }},
        {BrowserAction::navigateFromAddressField,
         [](Self& self, const Sender& /*sender*/) { self.navigateFromAddressField(); }},
        {BrowserAction::searchFromSearchField,
         [](Self& self, const Sender& /*sender*/) { self.searchFromSearchField(); }},
        {BrowserAction::goBack, [](Self& self, const Sender& /*sender*/) { self.goBack(); }},
        {BrowserAction::goForward, [](Self& self, const Sender& /*sender*/) { self.goForward(); }},
        {BrowserAction::stopLoading, [](Self& self, const Sender& /*sender*/) { self.stopLoading(); }},
        {BrowserAction::reload, [](Self& self, const Sender& sender) { self.reload(sender); }},
        {BrowserAction::toggleBookmark, [](Self& self, const Sender& /*sender*/) { self.toggleBookmark(); }},
        {BrowserAction::openBookmark, [](Self& self, const Sender& sender) { self.openBookmark(sender); }},
        {Platform::StandardAction::newWindowForTab,
         [](Self& self, const Sender& /*sender*/) { self.newWindowForTab(); }},
    };
    return table;
}

bool BrowserWindowController::validateMenuItem(Platform::MenuItem& item) {
    if (item.action() == BrowserAction::goBack) {
        return webView_->canGoBack();
    }
    if (item.action() == BrowserAction::goForward) {
        return webView_->canGoForward();
    }
    if (item.action() == BrowserAction::stopLoading) {
        return webView_->isLoading();
    }
    if (item.action() == BrowserAction::toggleBookmark) {
        item.setTitle(isBookmarked() ? "Remove Bookmark" : "Add Bookmark");
        return pageURL().has_value();
    }
    return true;
}

void BrowserWindowController::windowWillClose(Window& /*window*/) {
    observations_.clear();
    bookmarksObservation_.reset();
    if (onClose) {
        onClose();
    }
}

void BrowserWindowController::didFailNavigation(WebView& /*webView*/, const Platform::Error& error) {
    showLoadError(error);
}

void BrowserWindowController::didFailProvisionalNavigation(WebView& /*webView*/,
                                                           const Platform::Error& error) {
    showLoadError(error);
}

void BrowserWindowController::showLoadError(const Platform::Error& error) {
    // Ignore two errors that are not failures: the navigation was cancelled, for example by another
    // navigation, or the response cannot be shown as a page.
    if (error.domain == Platform::Error::urlDomain && error.code == Platform::Error::urlCancelled) {
        return;
    }
    if (error.domain == Platform::Error::webKitDomain &&
        error.code == Platform::Error::webKitFrameLoadInterrupted) {
        return;
    }
    std::string address;
    if (error.failingURL) {
        address = *error.failingURL;
    } else if (const auto url = webView_->url()) {
        address = url->absoluteString();
    }

    const Alert alert{.style = Alert::Style::warning,
                      .messageText = "Keyloft can't open the page",
                      .informativeText = error.localizedDescription + "\n" + address};
    if (window()) {
        window()->beginSheet(alert, nullptr);
    } else {
        alert.runModal();
    }
}

std::shared_ptr<WebView>
BrowserWindowController::createWebView(WebView& /*webView*/,
                                       const std::shared_ptr<Platform::WebViewConfiguration>& configuration,
                                       const Platform::NavigationAction& /*action*/) {
    const auto controller = onNewTab ? onNewTab(std::nullopt, configuration) : nullptr;
    return controller ? controller->webView() : nullptr;
}

void BrowserWindowController::runJavaScriptAlertPanel(WebView& /*webView*/, const std::string& message,
                                                      const Platform::FrameInfo& frame,
                                                      std::function<void()> completion) {
    const Alert alert{.style = Alert::Style::informational,
                      .messageText = panelTitle(frame, "Alert"),
                      .informativeText = message};
    window()->beginSheet(alert,
                         [completion = std::move(completion)](std::size_t /*button*/) { completion(); });
}

void BrowserWindowController::runJavaScriptConfirmPanel(WebView& /*webView*/, const std::string& message,
                                                        const Platform::FrameInfo& frame,
                                                        std::function<void(bool)> completion) {
    const Alert alert{.style = Alert::Style::informational,
                      .messageText = panelTitle(frame, "Confirm"),
                      .informativeText = message,
                      .buttonTitles = {"OK", "Cancel"}};
    window()->beginSheet(alert, [completion = std::move(completion)](std::size_t button) {
        completion(button == Alert::firstButton);
    });
}

} // namespace Keyloft
