#include "Keyloft/Program.h"

namespace Keyloft {

Platform::ProgramInfo program() {
    return {.identifier = "velde.orvane.keyloft",
            .name = "Keyloft",
            .version = KEYLOFT_VERSION,
            .description = "A small tabbed web browser",
            .copyright = "Copyright 2026 the Keyloft developers"};
}

} // namespace Keyloft
