#pragma once

#include <AppKit/NSEvent.h>
#include <Foundation/Foundation.h>

@class NSMenu;

NS_ASSUME_NONNULL_BEGIN

@interface NSMenuItem : NSObject <NSCopying, NSCoding>
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)string
                       action:(nullable SEL)selector
                keyEquivalent:(NSString*)charCode NS_DESIGNATED_INITIALIZER;
@property (nullable, strong) NSMenu* submenu;
@property (copy) NSString* title;
@property NSEventModifierFlags keyEquivalentModifierMask;
@property (nullable) SEL action;
@property (nullable, strong) id representedObject;
@end

NS_ASSUME_NONNULL_END
