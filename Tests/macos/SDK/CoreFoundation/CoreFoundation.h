#pragma once

#include <CoreFoundation/CFCGTypes.h>
#include <CoreFoundation/CFRunLoop.h>
