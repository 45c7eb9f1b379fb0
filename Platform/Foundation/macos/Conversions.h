#pragma once

#include "Platform/Foundation/Error.h"
#include "Platform/Foundation/URL.h"

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>

/// All conversions of texts, URLs and errors between the objects of Foundation and the values of Platform.
/// Safe on any thread.
namespace Platform {

/// `text` is UTF-8; an ill-formed sequence becomes U+FFFD.
NSString* _Nonnull toNSString(std::string_view text);
/// Returns UTF-8, empty for nil. An unpaired surrogate is replaced.
std::string fromNSString(NSString* _Nullable string);

/// Returns nil if NSURL, which is stricter than URL in older versions of macOS, does not accept the text.
NSURL* _Nullable toNSURL(const URL& url);
/// Returns nothing for nil, and for a text that URL does not accept.
std::optional<URL> fromNSURL(NSURL* _Nullable url);

Error fromNSError(NSError* _Nonnull error);

} // namespace Platform
