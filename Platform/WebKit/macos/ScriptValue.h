#pragma once

#include "Platform/Foundation/JSON.h"

#import <Foundation/Foundation.h>

namespace Platform {

/// What a page's script posted. Null for what JSON cannot tell: something that contains itself, or is nested
/// deeper than `JSONValue` is read; inside of something else also a date and what is no number.
JSONValue jsonValue(id _Nullable posted);

} // namespace Platform
