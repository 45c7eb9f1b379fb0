#pragma once

#include <AppKit/NSTextField.h>

@protocol NSSearchFieldDelegate;

NS_ASSUME_NONNULL_BEGIN

@interface NSSearchField : NSTextField
@property BOOL sendsWholeSearchString;
@property BOOL sendsSearchStringImmediately;
@property (nullable, weak) id<NSSearchFieldDelegate> delegate;
@end

@protocol NSSearchFieldDelegate <NSTextFieldDelegate>
@end

NS_ASSUME_NONNULL_END
