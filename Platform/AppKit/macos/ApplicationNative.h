#pragma once

#include "Platform/AppKit/Application.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <vector>

namespace Platform {

/// The functions that AppKit's application delegate calls, and the state of the application object.
struct Application::Native {
    static void willFinishLaunching() noexcept;
    static void didFinishLaunching() noexcept;
    static void openURLs(NSArray<NSURL*>* _Nonnull urls) noexcept;
    static bool shouldHandleReopen(bool hasVisibleWindows) noexcept;
    static bool shouldTerminateAfterLastWindowClosed() noexcept;
    static void willTerminate() noexcept;

    /// A strong reference, because AppKit holds the delegate weakly.
    id<NSApplicationDelegate> __strong _Nullable delegate;
    std::shared_ptr<Menu> mainMenu;
    std::weak_ptr<Menu> windowsMenu;
    /// The URLs among the program's arguments. Emptied when they are passed to the delegate.
    std::vector<URL> startURLs;
};

} // namespace Platform
