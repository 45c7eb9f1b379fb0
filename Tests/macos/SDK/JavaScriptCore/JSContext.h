#pragma once

#include <Foundation/Foundation.h>

@class JSValue;

API_AVAILABLE(macos(10.9))
@interface JSContext : NSObject
- (null_unspecified instancetype)init;
- (null_unspecified JSValue*)evaluateScript:(null_unspecified NSString*)script;
@end
