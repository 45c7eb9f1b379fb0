#pragma once

#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSWindow.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSAlertStyle) {
    NSAlertStyleWarning = 0,
    NSAlertStyleInformational = 1,
};

static const NSModalResponse NSAlertFirstButtonReturn = 1000;

@interface NSAlert : NSObject
@property (copy) NSString* messageText;
@property (copy) NSString* informativeText;
- (NSButton*)addButtonWithTitle:(NSString*)title;
@property NSAlertStyle alertStyle;
- (NSModalResponse)runModal;
- (void)beginSheetModalForWindow:(NSWindow*)sheetWindow
               completionHandler:(void (^_Nullable)(NSModalResponse returnCode))handler
    API_AVAILABLE(macos(10.9));
@property (readonly, strong) NSWindow* window;
@end

NS_ASSUME_NONNULL_END
