#include "Keyloft/CommandLine.h"

#include "Keyloft/Program.h"
#include "Platform/AppKit/StartArguments.h"
#include "Platform/Foundation/DiagnosticLog.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace Keyloft {

namespace {

constexpr const char* help = R"(Usage: keyloft [OPTION] [URL]...
Open each http or https URL in a tab. If Keyloft is already running, open the tabs there.
Without a URL, open a window.

  --help     print this help and exit
  --version  print the version and exit
  --         treat all following arguments as URLs
)";

constexpr int usageError = 2;

int print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

std::optional<int> answerOption(std::span<char* const> arguments) {
    for (const std::string_view argument : arguments) {
        if (argument == "--") {
            break;
        }
        if (!argument.starts_with('-') || argument == "-" || Platform::isSystemArgument(argument)) {
            continue;
        }
        if (argument == "--help") {
            return print(help);
        }
        if (argument == "--version") {
            const auto info = program();
            return print(info.name + " " + info.version + "\n");
        }
        std::fprintf(stderr, "keyloft: unknown option \"%s\"; \"keyloft --help\" lists the options\n",
                     Platform::escapingControlCharacters(argument).c_str());
        return usageError;
    }
    return std::nullopt;
}

} // namespace Keyloft
