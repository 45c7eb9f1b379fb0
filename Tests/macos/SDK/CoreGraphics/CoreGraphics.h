#pragma once

#include <CoreFoundation/CFCGTypes.h>
#include <CoreGraphics/CGColor.h>
