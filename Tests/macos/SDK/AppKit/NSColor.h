#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSColor : NSObject <NSCopying, NSSecureCoding>
@property (class, readonly, strong) NSColor* controlAccentColor API_AVAILABLE(macos(10.14));
@property (readonly) CGColorRef CGColor NS_RETURNS_INNER_POINTER API_AVAILABLE(macos(10.8));
@end

NS_ASSUME_NONNULL_END
