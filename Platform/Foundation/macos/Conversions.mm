#include "Platform/Foundation/macos/Conversions.h"

#include "Platform/Foundation/Characters.h"

namespace Platform {

NSString* toNSString(std::string_view text) {
    const std::string repaired = repairingUTF8(text);
    NSString* const string = [[NSString alloc] initWithBytes:repaired.data()
                                                      length:repaired.size()
                                                    encoding:NSUTF8StringEncoding];
    return string != nil ? string : @"";
}

std::string fromNSString(NSString* string) {
    NSData* const bytes = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return bytes != nil ? std::string(static_cast<const char*>(bytes.bytes), bytes.length) : std::string();
}

NSURL* toNSURL(const URL& url) { return [NSURL URLWithString:toNSString(url.absoluteString())]; }

std::optional<URL> fromNSURL(NSURL* url) {
    if (url == nil) {
        return std::nullopt;
    }
    return URL::fromString(fromNSString(url.absoluteString));
}

Error fromNSError(NSError* error) {
    const id failingURL = error.userInfo[NSURLErrorFailingURLStringErrorKey];
    return {
        .domain = fromNSString(error.domain),
        .code = static_cast<int>(error.code),
        .localizedDescription = fromNSString(error.localizedDescription),
        .failingURL = [failingURL isKindOfClass:NSString.class] ? std::optional(fromNSString(failingURL))
                                                                : std::nullopt,
    };
}

} // namespace Platform
