#pragma once

#include "Platform/Foundation/Error.h"
#include "Platform/Foundation/URL.h"

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>

/// The one place where texts, URLs and errors pass between Foundation's objects and our values. Safe on any
/// thread.
namespace Platform {

/// `text` is UTF-8; an ill-formed byte becomes U+FFFD.
NSString* _Nonnull toNSString(std::string_view text);
/// UTF-8; nothing at all for nil, and a replacement for a surrogate that has lost its other half.
std::string fromNSString(NSString* _Nullable string);

/// nil where NSURL, stricter than URL on older systems, takes the text for none.
NSURL* _Nullable toNSURL(const URL& url);
/// Nothing for nil and for what is no URL by our rules.
std::optional<URL> fromNSURL(NSURL* _Nullable url);

Error fromNSError(NSError* _Nonnull error);

} // namespace Platform
