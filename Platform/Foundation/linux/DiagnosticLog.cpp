#include "Platform/Foundation/DiagnosticLog.h"

#include "Platform/POSIX/Writing.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string>

namespace Platform {

namespace {

std::string prefix() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local = {};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 32> date = {};
    const std::size_t dateLength = std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);
    std::array<char, 8> fraction = {};
    std::snprintf(fraction.data(), fraction.size(), ".%03d ", static_cast<int>(now.tv_nsec / 1'000'000));
    return std::string(date.data(), dateLength) + fraction.data() + program_invocation_short_name + '[' +
           std::to_string(getpid()) + "] ";
}

} // namespace

void diagnosticLog(std::string_view text) {
    const std::string line = prefix() + escapingControlCharacters(text) + '\n';

    std::string_view rest = line;
    while (!rest.empty()) {
        const ssize_t count = writeHoldingBackSignal(STDERR_FILENO, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace Platform
