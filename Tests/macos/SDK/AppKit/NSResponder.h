#pragma once

#include <Foundation/Foundation.h>

@class NSEvent;

NS_ASSUME_NONNULL_BEGIN

@interface NSResponder : NSObject <NSCoding>
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
@property (nullable, assign) NSResponder* nextResponder;
- (BOOL)tryToPerform:(SEL)action with:(nullable id)object;
@property (readonly) BOOL acceptsFirstResponder;
@end

@protocol NSStandardKeyBindingResponding <NSObject>
@optional
- (void)selectAll:(nullable id)sender;
- (void)cancelOperation:(nullable id)sender;
@end

@interface NSResponder (NSWindowTabbing)
- (IBAction)newWindowForTab:(nullable id)sender API_AVAILABLE(macos(10.12));
@end

NS_ASSUME_NONNULL_END
