#pragma once

#include "Platform/WebKit/UserContentController.h"

#import <WebKit/WebKit.h>

namespace Platform {

struct UserContentController::Native {
    WKUserContentController* __strong _Nonnull const controller = [[WKUserContentController alloc] init];
};

} // namespace Platform
