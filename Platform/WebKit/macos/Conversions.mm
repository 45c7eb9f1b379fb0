#include "Platform/WebKit/macos/Conversions.h"

#include "Platform/Foundation/macos/Conversions.h"

namespace Platform {

NSURLRequest* toNSURLRequest(const URLRequest& request) {
    NSURL* const url = toNSURL(request.url);
    return url == nil ? nil
                      : [NSURLRequest requestWithURL:url
                                         cachePolicy:NSURLRequestUseProtocolCachePolicy
                                     timeoutInterval:request.timeoutInterval];
}

} // namespace Platform
