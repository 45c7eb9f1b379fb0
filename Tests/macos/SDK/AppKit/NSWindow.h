#pragma once

#include <AppKit/NSResponder.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSWindow : NSResponder
- (IBAction)performClose:(nullable id)sender;
- (IBAction)performMiniaturize:(nullable id)sender;
- (IBAction)performZoom:(nullable id)sender;
- (IBAction)selectNextTab:(nullable id)sender API_AVAILABLE(macos(10.12));
- (IBAction)selectPreviousTab:(nullable id)sender API_AVAILABLE(macos(10.12));
@end

NS_ASSUME_NONNULL_END
