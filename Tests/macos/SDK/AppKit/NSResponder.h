#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSResponder : NSObject <NSCoding>
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
- (BOOL)tryToPerform:(SEL)action with:(nullable id)object;
@end

@protocol NSStandardKeyBindingResponding <NSObject>
@optional
- (void)cancelOperation:(nullable id)sender;
@end

@interface NSResponder (NSWindowTabbing)
- (IBAction)newWindowForTab:(nullable id)sender API_AVAILABLE(macos(10.12));
@end

NS_ASSUME_NONNULL_END
