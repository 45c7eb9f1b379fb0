#pragma once

#include "Tests/Support/Program.h"

#include <string>
#include <vector>

namespace TestSupport {

/// Calls a method over the session bus. Returns true if it succeeded.
inline bool callOverBus(const std::string& name, const std::string& object, const std::string& method,
                        const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> words = {"gdbus",         "call", "--session", "--dest", name,
                                      "--object-path", object, "--method",  method};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Program("/usr/bin/env", words).waitForExit() == 0;
}

/// Calls Keyloft over the session bus as a desktop does: to open the URLs or, without URLs, to activate it.
/// If the program is not running, the bus starts it from its service file.
inline bool activate(const std::vector<std::string>& urls = {}) {
    std::string list;
    for (const auto& url : urls) {
        list += (list.empty() ? "['" : "', '") + url;
    }
    const std::string method = urls.empty() ? "Activate" : "Open";
    return callOverBus(
        "velde.orvane.keyloft", "/velde/orvane/keyloft", "org.freedesktop.Application." + method,
        urls.empty() ? std::vector<std::string>{"{}"} : std::vector<std::string>{list + "']", "{}"});
}

} // namespace TestSupport
