#include "Platform/Foundation/DiagnosticLog.h"

#include "Platform/Foundation/macos/Conversions.h"

namespace Platform {

void diagnosticLog(std::string_view text) { NSLog(@"%@", toNSString(escapingControlCharacters(text))); }

} // namespace Platform
