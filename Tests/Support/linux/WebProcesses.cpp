#include "Tests/Support/WebProcesses.h"

#include "Platform/WebKit/linux/NetworkSession.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/linux/ForgetPages.h"
#include "Tests/Support/linux/MainLoop.h"

#include <unistd.h>
#include <webkit/webkit.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace TestSupport {

namespace {

struct Process {
    pid_t parent = 0;
    std::string name;
};

std::optional<pid_t> number(std::string_view text) {
    pid_t value = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), value);
    return error == std::errc() && end == text.end() ? std::optional(value) : std::nullopt;
}

/// Reads the process's entry in /proc. Returns `std::nullopt` if the process has exited, even if it is still
/// a zombie.
std::optional<Process> readProcess(const std::filesystem::path& folder) {
    const std::ifstream file(folder / "stat");
    std::ostringstream contents;
    contents << file.rdbuf();
    const std::string text = contents.str();
    const auto begin = text.find('(');
    const auto end = text.rfind(')');
    if (begin == std::string::npos || end == std::string::npos) {
        return std::nullopt;
    }
    Process process{.parent = 0, .name = text.substr(begin + 1, end - begin - 1)};
    char state = 0;
    std::istringstream(text.substr(end + 1)) >> state >> process.parent;
    return state == 'Z' ? std::nullopt : std::optional(std::move(process));
}

std::map<pid_t, Process> allProcesses() {
    std::map<pid_t, Process> processes;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const auto id = number(entry.path().filename().string());
        auto process = id ? readProcess(entry.path()) : std::nullopt;
        if (process) {
            processes.emplace(*id, *std::move(process));
        }
    }
    return processes;
}

} // namespace

std::vector<pid_t> webProcesses() {
    const auto processes = allProcesses();
    const auto isBelowThis = [&](pid_t process) {
        auto found = processes.find(process);
        while (found != processes.end() && found->second.parent != ::getpid()) {
            found = processes.find(found->second.parent);
        }
        return found != processes.end();
    };
    std::vector<pid_t> result;
    for (const auto& [id, process] : processes) {
        if (process.name.starts_with("WebKitWebProc") && isBelowThis(id)) {
            result.push_back(id);
        }
    }
    return result;
}

bool forgetPages() { return forgetPages({}); }

bool forgetPages(std::vector<Platform::GObjectPtr<WebKitNetworkSession>> sessions) {
    using namespace std::chrono_literals;
    sessions.push_back(Platform::networkSession(Platform::WebsiteDataStore::defaultStore));
    const auto deadline = std::chrono::steady_clock::now() + 2s;
    do {
        // WebKitGTK terminates the processes that it caches for a data store when the data of the store is
        // removed. A view that was just released may add its process to the cache afterwards, so repeat the
        // removal.
        for (const auto& session : sessions) {
            bool removed = false;
            webkit_website_data_manager_clear(
                webkit_network_session_get_website_data_manager(session.get()), WEBKIT_WEBSITE_DATA_ALL, 0,
                nullptr, [](GObject*, GAsyncResult*, gpointer data) { *static_cast<bool*>(data) = true; },
                &removed);
            while (!removed) {
                g_main_context_iteration(nullptr, TRUE);
            }
        }
        if (runUntil([] { return webProcesses().empty(); }, 500ms)) {
            return true;
        }
    } while (std::chrono::steady_clock::now() < deadline);
    // Kill the remaining processes. WebKitGTK never releases a view that was created for a page without an
    // opener (seen with 2.50, not reported), so it never terminates the process of that page. WebKitGTK also
    // keeps a spare process after a page has moved to a different process.
    for (const pid_t process : webProcesses()) {
        ::kill(process, SIGKILL);
    }
    return runUntil([] { return webProcesses().empty(); });
}

} // namespace TestSupport
