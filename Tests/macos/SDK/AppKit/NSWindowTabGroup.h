#pragma once

#include <Foundation/Foundation.h>

@class NSWindow;

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.13))
@interface NSWindowTabGroup : NSObject
@property (nullable, weak) NSWindow* selectedWindow;
@end

NS_ASSUME_NONNULL_END
