#pragma once

#include <Foundation/Foundation.h>

API_AVAILABLE(macos(10.10))
@interface WKNavigation : NSObject
@end
