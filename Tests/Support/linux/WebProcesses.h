#pragma once

#include <unistd.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace TestSupport {

/// The web processes below this one.
inline std::vector<int> webProcesses() {
    struct Process {
        int parent = 0;
        std::string name;
    };
    std::map<int, Process> processes;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string number = entry.path().filename();
        if (number.empty() || std::isdigit(static_cast<unsigned char>(number[0])) == 0)
            continue;
        const std::ifstream file(entry.path() / "stat");
        std::stringstream contents;
        contents << file.rdbuf();
        const std::string text = contents.str();
        const auto begin = text.find('(');
        const auto end = text.rfind(')');
        if (begin == std::string::npos || end == std::string::npos)
            continue; // it ended meanwhile
        Process process{.parent = 0, .name = text.substr(begin + 1, end - begin - 1)};
        char state = 0;
        std::istringstream(text.substr(end + 1)) >> state >> process.parent;
        if (state != 'Z')
            processes[std::stoi(number)] = process;
    }
    const auto isBelowThis = [&processes](int process) {
        for (auto found = processes.find(process); found != processes.end();
             found = processes.find(found->second.parent)) {
            if (found->second.parent == ::getpid())
                return true;
        }
        return false;
    };
    std::vector<int> result;
    for (const auto& [number, process] : processes) {
        if (process.name.starts_with("WebKitWebProc") && isBelowThis(number))
            result.push_back(number);
    }
    return result;
}

} // namespace TestSupport
