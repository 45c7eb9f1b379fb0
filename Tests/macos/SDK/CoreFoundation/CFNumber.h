#pragma once

#include <CoreFoundation/CFRunLoop.h>

#pragma clang assume_nonnull begin

typedef unsigned long CFTypeID;

extern "C" {
CFTypeID CFGetTypeID(CFTypeRef _Null_unspecified cf);
CFTypeID CFBooleanGetTypeID(void);
}

#pragma clang assume_nonnull end
