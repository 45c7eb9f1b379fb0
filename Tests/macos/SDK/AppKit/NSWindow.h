#pragma once

#include <AppKit/NSGraphics.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSResponder.h>
#include <AppKit/NSView.h>

@class NSWindowController, NSWindowTabGroup;
@protocol NSWindowDelegate;

NS_ASSUME_NONNULL_BEGIN

typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
};

typedef NS_ENUM(NSInteger, NSWindowTabbingMode) {
    NSWindowTabbingModePreferred = 1,
};

typedef NS_OPTIONS(NSUInteger, NSWindowOcclusionState) {
    NSWindowOcclusionStateVisible = 1UL << 1,
} API_AVAILABLE(macos(10.9));

FOUNDATION_EXPORT NSNotificationName const
    NSWindowDidChangeOcclusionStateNotification API_AVAILABLE(macos(10.9));

typedef NSString* NSWindowFrameAutosaveName;
typedef NSString* NSWindowTabbingIdentifier;

@interface NSWindow : NSResponder <NSMenuItemValidation>
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag NS_DESIGNATED_INITIALIZER;
@property (copy) NSString* title;
@property NSWindowStyleMask styleMask;
@property (nullable, strong) __kindof NSView* contentView;
@property (nullable, weak) id<NSWindowDelegate> delegate;
@property (readonly) NSRect frame;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (BOOL)makeFirstResponder:(nullable NSResponder*)responder;
@property (nullable, readonly, weak) NSResponder* firstResponder;
- (void)close;
@property (getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
- (void)center;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderOut:(nullable id)sender;
@property (readonly, getter=isVisible) BOOL visible;
@property (readonly) NSWindowOcclusionState occlusionState API_AVAILABLE(macos(10.9));
@property NSSize minSize;
@property BOOL preventsApplicationTerminationWhenModal API_AVAILABLE(macos(10.6));
- (IBAction)performClose:(nullable id)sender;
- (IBAction)performMiniaturize:(nullable id)sender;
- (IBAction)performZoom:(nullable id)sender;
- (BOOL)setFrameAutosaveName:(NSWindowFrameAutosaveName)name;
@property (readonly, copy) NSWindowFrameAutosaveName frameAutosaveName;
- (void)endSheet:(NSWindow*)sheetWindow API_AVAILABLE(macos(10.9));
@property (nullable, weak) __kindof NSWindowController* windowController;
@property NSWindowTabbingMode tabbingMode API_AVAILABLE(macos(10.12));
@property (copy) NSWindowTabbingIdentifier tabbingIdentifier API_AVAILABLE(macos(10.12));
- (IBAction)selectNextTab:(nullable id)sender API_AVAILABLE(macos(10.12));
- (IBAction)selectPreviousTab:(nullable id)sender API_AVAILABLE(macos(10.12));
- (void)addTabbedWindow:(NSWindow*)window ordered:(NSWindowOrderingMode)ordered API_AVAILABLE(macos(10.12));
@property (nullable, readonly, weak) NSWindowTabGroup* tabGroup API_AVAILABLE(macos(10.13));
@end

@protocol NSWindowDelegate <NSObject>
@optional
- (void)windowDidBecomeKey:(NSNotification*)notification;
- (void)windowWillClose:(NSNotification*)notification;
@end

NS_ASSUME_NONNULL_END
