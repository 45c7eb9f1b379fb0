#pragma once

#include <Foundation/NSObjCRuntime.h>

typedef struct _NSRange {
    NSUInteger location;
    NSUInteger length;
} NSRange;
typedef NSRange* NSRangePointer;

static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) { return {location, length}; }
