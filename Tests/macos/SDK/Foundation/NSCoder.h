#pragma once

#include <Foundation/NSObject.h>

@interface NSCoder : NSObject
@end
