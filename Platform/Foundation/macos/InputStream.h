#pragma once

#include "Platform/Foundation/InputStream.h"

#import <Foundation/Foundation.h>

#include <memory>

namespace Platform {

/// Reads from Foundation's stream; null for nil.
std::shared_ptr<InputStream> fromNSInputStream(NSInputStream* _Nullable stream);

} // namespace Platform
