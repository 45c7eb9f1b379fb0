#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@protocol NSAccessibilityElement <NSObject>
@end

@protocol NSAccessibility <NSObject>
@property (nullable, copy) NSString* accessibilityLabel API_AVAILABLE(macos(10.10));
@end

NS_ASSUME_NONNULL_END
