#include "Keyloft/AppDelegate.h"
#include "Keyloft/BrowserWindowController.h"
#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/macos/AlertNative.h"
#include "Platform/AppKit/macos/ControlNative.h"
#include "Platform/AppKit/macos/MenuNative.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/AppKit/macos/WindowNative.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/Timer.h"
#include "Platform/Foundation/macos/Conversions.h"
#include "Tests/Support/TemporaryDirectory.h"

#import <WebKit/WebKit.h>
#include <gtest/gtest.h>
#import <objc/runtime.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

// Tests of the native AppKit and WebKit objects that the program creates.

namespace {

using Keyloft::AppDelegate;
using Keyloft::BrowserWindowController;
using KeyloftBrowserKit::BookmarkStore;
namespace BrowserAction = Keyloft::BrowserAction;
namespace StandardAction = Platform::StandardAction;
using Platform::Action;
using Platform::fromNSString;
using Platform::selectorFor;

std::string classNameOf(id object) { return class_getName([object class]); }

NSControl* controlOf(Platform::View& view) { return Platform::ControlNative::of(view.native()).control; }

NSButton* buttonOf(Platform::View& view) { return static_cast<NSButton*>(controlOf(view)); }

class NativeBrowser : public testing::Test {
protected:
    NativeBrowser() {
        Platform::Application::shared().prepare();
        controller_ =
            BrowserWindowController::create(std::make_shared<BookmarkStore>(Platform::URL::fromFilePath(
                                                directory_ / "bookmarks.json", false)),
                                            nullptr);
    }

    BrowserWindowController& controller() const { return *controller_; }
    NSWindow* window() const { return controller_->window()->native().window; }

private:
    TestSupport::TemporaryDirectory directory_;
    std::shared_ptr<BrowserWindowController> controller_;
};

TEST_F(NativeBrowser, windowsAreTabsOfOneKind) {
    controller().showWindow();
    EXPECT_EQ(window().styleMask, 15U);
    EXPECT_EQ(window().tabbingMode, NSWindowTabbingModePreferred);
    EXPECT_EQ(fromNSString(window().tabbingIdentifier), "velde.orvane.keyloft.browser");
    EXPECT_EQ(fromNSString(window().frameAutosaveName), "BrowserWindow");
    EXPECT_EQ(fromNSString(window().title), "New Tab");
    EXPECT_EQ(window().minSize.width, 480);
    EXPECT_EQ(window().minSize.height, 320);
    EXPECT_FALSE(window().releasedWhenClosed);
    controller().window()->close();
}

TEST_F(NativeBrowser, theControllerIsKnownByItsNameAndRespondsToItsOwnActionsOnly) {
    NSWindowController* const native = window().windowController;
    ASSERT_TRUE(native != nil);
    EXPECT_EQ(classNameOf(native), "BrowserWindowController");
    EXPECT_TRUE(static_cast<id>(window().delegate) == native);
    for (const Action action :
         {BrowserAction::reload, StandardAction::newWindowForTab, BrowserAction::toggleBookmark}) {
        EXPECT_TRUE([native respondsToSelector:selectorFor(action)]);
    }
    for (const Action action : {StandardAction::performClose, StandardAction::copy, BrowserAction::newTab}) {
        EXPECT_FALSE([native respondsToSelector:selectorFor(action)]);
    }
}

TEST_F(NativeBrowser, anActionReachesTheControllerWhichHasNoMethodForIt) {
    int asked = 0;
    controller().onNewTab = [&](const auto& /*url*/, const auto& /*configuration*/) {
        ++asked;
        return nullptr;
    };
    EXPECT_TRUE([NSApplication.sharedApplication sendAction:selectorFor(StandardAction::newWindowForTab)
                                                         to:window().windowController
                                                       from:nil]);
    EXPECT_EQ(asked, 1);
}

TEST_F(NativeBrowser, anItemOfTheSystemsOwnIsValidatedByItsAction) {
    const id native = window().windowController;
    NSMenuItem* const newTab = [[NSMenuItem alloc] initWithTitle:@"New Tab"
                                                          action:selectorFor(StandardAction::newWindowForTab)
                                                   keyEquivalent:@""];
    NSMenuItem* const back = [[NSMenuItem alloc] initWithTitle:@"Back"
                                                        action:selectorFor(BrowserAction::goBack)
                                                 keyEquivalent:@""];
    EXPECT_TRUE([static_cast<id<NSMenuItemValidation>>(native) validateMenuItem:newTab]);
    EXPECT_FALSE([static_cast<id<NSMenuItemValidation>>(native) validateMenuItem:back]);
    EXPECT_EQ(fromNSString(newTab.title), "New Tab");
}

TEST_F(NativeBrowser, toolbarButtonsAreTexturedAndSendTheirActionsToTheController) {
    NSButton* const back = buttonOf(*controller().backButton());
    EXPECT_EQ(back.bezelStyle, 11U);
    EXPECT_TRUE(back.bordered);
    EXPECT_FALSE(back.enabled);
    EXPECT_TRUE(back.image != nil);
    EXPECT_EQ(fromNSString(back.toolTip), "Back");
    EXPECT_EQ(back.action, selectorFor(BrowserAction::goBack));
    EXPECT_TRUE(back.target == window().windowController);
    EXPECT_EQ(buttonOf(*controller().reloadButton()).action, selectorFor(BrowserAction::reload));
}

TEST_F(NativeBrowser, bookmarkButtonsAreRecessedAndCarryTheirURL) {
    NSButton* const first = buttonOf(*controller().bookmarksBar()->arrangedSubviews().front());
    EXPECT_EQ(first.bezelStyle, 13U);
    EXPECT_FALSE(first.bordered);
    EXPECT_EQ(first.action, selectorFor(BrowserAction::openBookmark));
    NSURL* const url = first.cell.representedObject;
    EXPECT_EQ(fromNSString(url.absoluteString), fromNSString(first.toolTip));
}

TEST_F(NativeBrowser, fieldsSendTheirActionOnReturnAlone) {
    NSTextField* const address = static_cast<NSTextField*>(controlOf(*controller().addressField()));
    NSCell* const cell = address.cell;
    EXPECT_EQ(address.bezelStyle, NSTextFieldRoundedBezel);
    EXPECT_EQ(cell.lineBreakMode, NSLineBreakByTruncatingTail);
    EXPECT_TRUE(cell.usesSingleLineMode);
    EXPECT_TRUE(cell.scrollable);
    EXPECT_FALSE(cell.sendsActionOnEndEditing);
    EXPECT_EQ(fromNSString(address.placeholderString), "Enter a URL or search");

    NSSearchField* const search = static_cast<NSSearchField*>(controlOf(*controller().searchField()));
    EXPECT_TRUE(search.sendsWholeSearchString);
    EXPECT_FALSE(search.sendsSearchStringImmediately);
}

TEST_F(NativeBrowser, theProgressBarIsKnownByItsNameAndBackedByALayer) {
    NSView* const bar = controller().progressBar()->native().view;
    EXPECT_EQ(classNameOf(bar), "ProgressBar");
    EXPECT_TRUE(bar.wantsLayer);
    EXPECT_TRUE(controller().progressBar()->fill()->native().view.hidden);
}

TEST_F(NativeBrowser, thePageIsNotAskedWhereItMayGo) {
    WKWebView* const page = static_cast<WKWebView*>(controller().webView()->native().view);
    EXPECT_TRUE(page.allowsBackForwardNavigationGestures);
    EXPECT_FALSE([page.navigationDelegate
        respondsToSelector:@selector(webView:decidePolicyForNavigationAction:decisionHandler:)]);
    EXPECT_FALSE([page respondsToSelector:selectorFor(BrowserAction::reload)]);
}

TEST(NativeMainMenu, isTheSystemsOwn) {
    Platform::Application::shared().prepare();
    const auto delegate = AppDelegate::create();
    const auto menu = delegate->buildMainMenu();
    NSMenu* const native = Platform::makeNativeMenu(menu);
    std::vector<std::string> titles;
    for (NSMenuItem* item in native.itemArray) {
        titles.push_back(fromNSString(item.title));
    }
    EXPECT_EQ(titles, (std::vector<std::string>{"Keyloft", "File", "Edit", "View", "History", "Bookmarks",
                                                "Window"}));
    NSMenu* const bookmarks = Platform::nativeMenuOf(*delegate->bookmarksMenu(), native);
    const id<NSMenuDelegate> bookmarksDelegate = bookmarks.delegate;
    ASSERT_TRUE(bookmarksDelegate != nil);
    [bookmarksDelegate menuNeedsUpdate:bookmarks];
    EXPECT_EQ(bookmarks.itemArray.count, 2 + delegate->bookmarks()->bookmarks().size());

    // AppKit may update the menu again between the user's choice and the action of the chosen item.
    NSMenuItem* const chosen = bookmarks.itemArray[2];
    [bookmarksDelegate menuNeedsUpdate:bookmarks];
    EXPECT_FALSE(bookmarks.itemArray[2] == chosen);
    const auto item = Platform::menuItemOf(chosen);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->representedURL(), delegate->bookmarks()->bookmarks().front().url);
}

TEST(NativeClassName, isNumberedIfAnotherClassHasTheName) {
    const Class other = objc_allocateClassPair(NSObject.class, "KeyloftTakenName", 0);
    objc_registerClassPair(other);
    const Class made = Platform::registeredSubclass(NSResponder.class, "KeyloftTakenName");
    EXPECT_EQ(std::string(class_getName(made)), "KeyloftTakenName2");
    EXPECT_TRUE(class_getSuperclass(made) == NSResponder.class);
    EXPECT_TRUE(Platform::registeredSubclass(NSResponder.class, "KeyloftTakenName") == made);
}

TEST(NativeError, namesTheFailingURLUnderEitherKey) {
    NSURL* const url = [NSURL URLWithString:@"https://client.example/a"];
    const auto failingURL = [](NSDictionary<NSErrorUserInfoKey, id>* info) {
        return Platform::fromNSError([NSError errorWithDomain:NSURLErrorDomain
                                                         code:NSURLErrorBadURL
                                                     userInfo:info])
            .failingURL;
    };
    EXPECT_EQ(failingURL(@{NSURLErrorFailingURLErrorKey : url}), "https://client.example/a");
    EXPECT_EQ(failingURL(@{NSURLErrorFailingURLStringErrorKey : @"http://["}), "http://[");
    EXPECT_EQ(failingURL(@{NSURLErrorFailingURLErrorKey : @"no URL"}), std::nullopt);
    EXPECT_EQ(failingURL(@{}), std::nullopt);
}

TEST(NativeAlert, doesNotKeepTheUserFromQuitting) {
    Platform::Application::shared().prepare();
    NSAlert* const alert = Platform::makeNativeAlert({});
    EXPECT_FALSE(alert.window.preventsApplicationTerminationWhenModal);
}

TEST(NativeRunLoop, isStoppedFromATimerWhileNoEventComes) {
    Platform::Application::shared().prepare();
    auto& loop = Platform::RunLoop::main();
    const auto timer = Platform::Timer::scheduled(0.01, false, [&loop] { loop.stop(); });
    loop.run();
    int turns = 0;
    loop.perform([&] {
        ++turns;
        loop.perform([&] {
            ++turns;
            loop.stop();
        });
        loop.run();
        loop.stop();
    });
    loop.run();
    EXPECT_EQ(turns, 2);
}

} // namespace
