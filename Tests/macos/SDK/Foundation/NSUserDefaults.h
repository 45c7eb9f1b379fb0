#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSUserDefaults : NSObject
@property (class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (void)registerDefaults:(NSDictionary<NSString*, id>*)registrationDictionary;
@end

NS_ASSUME_NONNULL_END
