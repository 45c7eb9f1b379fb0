#include "KeyloftCore/Log.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/POSIX/UnixSocket.h"

#include <unistd.h>

#include <cstddef>

namespace KeyloftCore {

namespace {

constexpr std::size_t shownWhole = 12;
constexpr std::size_t shownOfLonger = 8;

} // namespace

void log(std::string_view message) {
    std::string line(message);
    line.push_back('\n');
    // SIGPIPE must not terminate the process when the reader of the log has exited.
    [[maybe_unused]] const auto written =
        Platform::writeWithoutSignal(STDERR_FILENO, line.data(), line.size());
}

std::string redact(std::string_view value) {
    const auto count = Platform::characterCount(value);
    if (count <= shownWhole) {
        return std::string(value);
    }
    return Platform::characterPrefix(value, shownOfLonger) + "…(" + std::to_string(count) + ")";
}

} // namespace KeyloftCore
