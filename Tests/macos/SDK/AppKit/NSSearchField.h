#pragma once

#include <AppKit/NSTextField.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSSearchField : NSTextField
@property BOOL sendsWholeSearchString API_AVAILABLE(macos(10.10));
@property BOOL sendsSearchStringImmediately API_AVAILABLE(macos(10.10));
@end

NS_ASSUME_NONNULL_END
