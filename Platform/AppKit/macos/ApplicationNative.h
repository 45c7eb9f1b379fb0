#pragma once

#include "Platform/AppKit/Application.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <vector>

namespace Platform {

/// What the application's delegate is told, and what belongs to the one application object.
struct Application::Native {
    static void willFinishLaunching() noexcept;
    static void didFinishLaunching() noexcept;
    static void openURLs(NSArray<NSURL*>* _Nonnull urls) noexcept;
    static bool shouldHandleReopen(bool hasVisibleWindows) noexcept;
    static bool shouldTerminateAfterLastWindowClosed() noexcept;
    static void willTerminate() noexcept;

    /// AppKit holds it weakly.
    id<NSApplicationDelegate> __strong _Nullable delegate;
    std::shared_ptr<Menu> mainMenu;
    std::weak_ptr<Menu> windowsMenu;
    /// Out of the program's arguments, until the delegate has them.
    std::vector<URL> startURLs;
};

} // namespace Platform
