#pragma once

#include "Platform/Foundation/URLRequest.h"

#import <Foundation/Foundation.h>

namespace Platform {

/// nil where NSURL takes the request's URL for none.
NSURLRequest* _Nullable toNSURLRequest(const URLRequest& request);

} // namespace Platform
