#pragma once

#include <AppKit/NSText.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSTextView : NSText
@end

NS_ASSUME_NONNULL_END
