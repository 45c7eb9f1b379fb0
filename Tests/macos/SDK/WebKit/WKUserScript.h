#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, WKUserScriptInjectionTime) {
    WKUserScriptInjectionTimeAtDocumentStart = 0,
    WKUserScriptInjectionTimeAtDocumentEnd = 1,
} API_AVAILABLE(macos(10.10));

API_AVAILABLE(macos(10.10))
@interface WKUserScript : NSObject <NSCopying>
- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)injectionTime
              forMainFrameOnly:(BOOL)forMainFrameOnly;
@end

NS_ASSUME_NONNULL_END
