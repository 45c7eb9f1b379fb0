#pragma once

#include <Foundation/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSInvocation : NSObject
@property SEL selector;
- (void)getArgument:(void*)argumentLocation atIndex:(NSInteger)idx;
@end

NS_ASSUME_NONNULL_END
