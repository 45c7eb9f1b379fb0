#pragma once

#include <Foundation/Foundation.h>

@class WKFrameInfo;

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, WKNavigationType) {
    WKNavigationTypeLinkActivated = 0,
    WKNavigationTypeFormSubmitted = 1,
    WKNavigationTypeBackForward = 2,
    WKNavigationTypeReload = 3,
    WKNavigationTypeFormResubmitted = 4,
    WKNavigationTypeOther = -1,
} API_AVAILABLE(macos(10.10));

API_AVAILABLE(macos(10.10))
@interface WKNavigationAction : NSObject
@property (nullable, nonatomic, readonly, copy) WKFrameInfo* targetFrame;
@property (nonatomic, readonly) WKNavigationType navigationType;
@property (nonatomic, readonly, copy) NSURLRequest* request;
@end

NS_ASSUME_NONNULL_END
