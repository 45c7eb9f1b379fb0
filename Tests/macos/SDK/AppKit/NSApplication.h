#pragma once

#include <AppKit/NSEvent.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSResponder.h>

@class NSDate;
@class NSWindow;
@protocol NSApplicationDelegate;

NS_ASSUME_NONNULL_BEGIN

typedef NSInteger NSModalResponse;

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular = 0,
};

@interface NSApplication : NSResponder <NSMenuItemValidation>
@property (class, readonly, strong) __kindof NSApplication* sharedApplication;
@property (nullable, weak) id<NSApplicationDelegate> delegate;
- (IBAction)hide:(nullable id)sender;
- (IBAction)hideOtherApplications:(nullable id)sender;
- (IBAction)unhideAllApplications:(nullable id)sender;
- (IBAction)terminate:(nullable id)sender;
@property (nullable, readonly, weak) NSWindow* mainWindow;
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps API_DEPRECATED("activate", macos(10.0, 27.0));
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy API_AVAILABLE(macos(10.6));
- (void)finishLaunching;
- (void)run;
- (void)sendEvent:(NSEvent*)event;
@property (readonly, copy) NSArray<NSWindow*>* windows;
@property (nullable, strong) NSMenu* mainMenu;
@end

@interface NSApplication (NSEvent)
- (nullable NSEvent*)nextEventMatchingMask:(NSEventMask)mask
                                 untilDate:(nullable NSDate*)expiration
                                    inMode:(NSRunLoopMode)mode
                                   dequeue:(BOOL)deqFlag;
- (void)postEvent:(NSEvent*)event atStart:(BOOL)flag;
@end

@interface NSApplication (NSResponder)
- (BOOL)sendAction:(SEL)action to:(nullable id)target from:(nullable id)sender;
- (nullable id)targetForAction:(SEL)action;
@end

@interface NSApplication (NSWindowsMenu)
@property (nullable, strong) NSMenu* windowsMenu;
- (void)arrangeInFront:(nullable id)sender;
@end

@interface NSApplication (NSStandardAboutPanel)
- (void)orderFrontStandardAboutPanel:(nullable id)sender;
@end

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls API_AVAILABLE(macos(10.13));
- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app API_AVAILABLE(macos(12.0));
- (void)applicationWillFinishLaunching:(NSNotification*)notification;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

NS_ASSUME_NONNULL_END
