#pragma once

#include <AppKit/NSMenuItem.h>
#include <Foundation/Foundation.h>

@protocol NSMenuDelegate;

NS_ASSUME_NONNULL_BEGIN

@interface NSMenu : NSObject <NSCopying, NSCoding>
- (instancetype)initWithTitle:(NSString*)title NS_DESIGNATED_INITIALIZER;
- (void)addItem:(NSMenuItem*)newItem;
- (void)removeAllItems API_AVAILABLE(macos(10.6));
@property (copy) NSArray<NSMenuItem*>* itemArray;
@property (nullable, weak) id<NSMenuDelegate> delegate;
@end

@protocol NSMenuItemValidation <NSObject>
- (BOOL)validateMenuItem:(NSMenuItem*)menuItem;
@end

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
@end

NS_ASSUME_NONNULL_END
