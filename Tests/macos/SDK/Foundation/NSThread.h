#pragma once

#include <Foundation/NSObject.h>

@interface NSThread : NSObject
@property (class, readonly) BOOL isMainThread API_AVAILABLE(macos(10.5));
@end
