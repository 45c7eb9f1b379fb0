#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.10))
@interface WKScriptMessage : NSObject
@property (nonatomic, readonly, copy) id body;
@property (nonatomic, readonly, copy) NSString* name;
@end

NS_ASSUME_NONNULL_END
