#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSAccessibilityRole;
FOUNDATION_EXPORT NSAccessibilityRole const NSAccessibilityProgressIndicatorRole;

@protocol NSAccessibilityElement <NSObject>
@end

@protocol NSAccessibility <NSObject>
@property (getter=isAccessibilityElement) BOOL accessibilityElement API_AVAILABLE(macos(10.10));
@property (nullable, copy) NSAccessibilityRole accessibilityRole API_AVAILABLE(macos(10.10));
@property (nullable, strong) id accessibilityValue API_AVAILABLE(macos(10.10));
@property (nullable, strong) id accessibilityMinValue API_AVAILABLE(macos(10.10));
@property (nullable, strong) id accessibilityMaxValue API_AVAILABLE(macos(10.10));
@property (nullable, copy) NSString* accessibilityLabel API_AVAILABLE(macos(10.10));
@end

NS_ASSUME_NONNULL_END
