#include "Platform/Foundation/FatalError.h"

#include "Platform/Foundation/DiagnosticLog.h"

#include <cstdlib>

namespace Platform {

void fatalError(std::string_view message) {
    diagnosticLog(message);
    std::abort();
}

} // namespace Platform
