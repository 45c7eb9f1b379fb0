#pragma once

#include "Tests/Support/Program.h"

#include <string>
#include <vector>

namespace TestSupport {

/// Calls a D-Bus method on the session bus. Returns true if the call succeeded.
inline bool callOverBus(const std::string& name, const std::string& object, const std::string& method,
                        const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> words = {"gdbus",         "call", "--session", "--dest", name,
                                      "--object-path", object, "--method",  method};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Program("/usr/bin/env", words).waitForExit() == 0;
}

/// Opens the URLs in Keyloft or, without URLs, activates Keyloft. Calls org.freedesktop.Application on the
/// session bus, as a desktop environment does. If Keyloft is not running, the bus launches it through its
/// service file. Returns true if the call succeeded.
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
