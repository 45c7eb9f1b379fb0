#pragma once

#include <CoreFoundation/CFCGTypes.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRunLoop.h>
