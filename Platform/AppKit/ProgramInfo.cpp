#include "Platform/AppKit/ProgramInfo.h"

#include <utility>

namespace Platform {

namespace {

ProgramInfo& current() {
    static ProgramInfo info{.identifier = "unnamed-program",
                            .name = "This program",
                            .version = {},
                            .description = {},
                            .copyright = {}};
    return info;
}

} // namespace

const ProgramInfo& programInfo() { return current(); }
void setProgramInfo(ProgramInfo info) { current() = std::move(info); }

} // namespace Platform
