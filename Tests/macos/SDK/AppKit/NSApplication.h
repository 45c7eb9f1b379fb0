#pragma once

#include <AppKit/NSResponder.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSApplication : NSResponder
- (IBAction)hide:(nullable id)sender;
- (IBAction)hideOtherApplications:(nullable id)sender;
- (IBAction)unhideAllApplications:(nullable id)sender;
- (IBAction)terminate:(nullable id)sender;
- (void)arrangeInFront:(nullable id)sender;
@end

@interface NSApplication (NSStandardAboutPanel)
- (void)orderFrontStandardAboutPanel:(nullable id)sender;
@end

NS_ASSUME_NONNULL_END
