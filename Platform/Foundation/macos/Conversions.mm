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

namespace {

/// Prefers `NSURLErrorFailingURLStringErrorKey`, which has been deprecated since macOS 15.4. If the key is
/// missing, falls back to `NSURLErrorFailingURLErrorKey`.
std::optional<std::string> failingURLOf(NSError* error) {
    const id text = error.userInfo[NSURLErrorFailingURLStringErrorKey];
    if ([text isKindOfClass:NSString.class]) {
        return fromNSString(text);
    }
    const id url = error.userInfo[NSURLErrorFailingURLErrorKey];
    if ([url isKindOfClass:NSURL.class]) {
        return fromNSString(static_cast<NSURL*>(url).absoluteString);
    }
    return std::nullopt;
}

} // namespace

Error fromNSError(NSError* error) {
    return {
        .domain = fromNSString(error.domain),
        .code = static_cast<int>(error.code),
        .localizedDescription = fromNSString(error.localizedDescription),
        .failingURL = failingURLOf(error),
    };
}

} // namespace Platform
