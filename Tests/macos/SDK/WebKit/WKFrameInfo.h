#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.10))
@interface WKFrameInfo : NSObject <NSCopying>
@property (nonatomic, readonly, getter=isMainFrame) BOOL mainFrame;
@property (nonatomic, readonly, copy) NSURLRequest* request;
@end

NS_ASSUME_NONNULL_END
