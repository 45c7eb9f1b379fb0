#pragma once

#include <Foundation/Foundation.h>

@class NSMenuItem;

NS_ASSUME_NONNULL_BEGIN

@interface NSMenu : NSObject <NSCopying, NSCoding>
- (instancetype)initWithTitle:(NSString*)title NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
@property (copy) NSString* title;
@end

@protocol NSMenuItemValidation <NSObject>
- (BOOL)validateMenuItem:(NSMenuItem*)menuItem;
@end

NS_ASSUME_NONNULL_END
