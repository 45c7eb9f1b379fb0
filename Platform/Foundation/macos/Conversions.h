#pragma once

#include "Platform/Foundation/Error.h"
#include "Platform/Foundation/URL.h"

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>

/// Conversions of strings, URLs and errors between Apple's types and Platform's. Thread-safe.
namespace Platform {

/// Converts UTF-8 text. Each ill-formed sequence becomes U+FFFD.
NSString* _Nonnull toNSString(std::string_view text);
/// Returns the string in UTF-8, or an empty string for nil. Unpaired surrogates are replaced.
std::string fromNSString(NSString* _Nullable string);

/// Returns nil if NSURL does not accept the URL. In older versions of macOS, NSURL is stricter than URL.
NSURL* _Nullable toNSURL(const URL& url);
/// Returns nothing if `url` is nil or URL rejects its string.
std::optional<URL> fromNSURL(NSURL* _Nullable url);

Error fromNSError(NSError* _Nonnull error);

} // namespace Platform
