#pragma once

#include <Foundation/NSObjCRuntime.h>

enum : NSInteger {
    NSURLErrorCancelled = -999,
    NSURLErrorBadURL = -1000,
};
