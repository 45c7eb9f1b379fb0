#pragma once

#include <Foundation/Foundation.h>

API_AVAILABLE(macos(10.9))
@interface JSValue : NSObject
@property (readonly) BOOL isString API_AVAILABLE(macos(10.9));
- (null_unspecified JSValue*)callWithArguments:(null_unspecified NSArray*)arguments;
- (null_unspecified NSString*)toString;
@end
