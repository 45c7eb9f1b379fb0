#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/NSURL.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSFileManager : NSObject
@property (class, readonly, strong) NSFileManager* defaultManager;
@property (readonly, copy) NSURL* homeDirectoryForCurrentUser API_AVAILABLE(macos(10.12));
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domainMask API_AVAILABLE(macos(10.6));
@end

NS_ASSUME_NONNULL_END
