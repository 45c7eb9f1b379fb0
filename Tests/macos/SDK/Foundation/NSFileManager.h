#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/NSURL.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSFileAttributeKey;
FOUNDATION_EXPORT NSFileAttributeKey const NSFilePosixPermissions;

@interface NSFileManager : NSObject
@property (class, readonly, strong) NSFileManager* defaultManager;
@property (readonly, copy) NSURL* homeDirectoryForCurrentUser API_AVAILABLE(macos(10.12));
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domainMask API_AVAILABLE(macos(10.6));
- (BOOL)createDirectoryAtPath:(NSString*)path
    withIntermediateDirectories:(BOOL)createIntermediates
                     attributes:(nullable NSDictionary<NSFileAttributeKey, id>*)attributes
                          error:(NSError* _Nullable __autoreleasing* _Nullable)error
    API_AVAILABLE(macos(10.5));
@end

NS_ASSUME_NONNULL_END
