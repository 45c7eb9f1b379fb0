#pragma once

#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

/// The resources that a process uses, read from Linux's /proc.
namespace TestSupport {

inline std::size_t entriesOf(const std::filesystem::path& directory) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(directory)) {
        ++count;
    }
    return count;
}

/// The number of open descriptors of this process, including the one with which the list is read.
inline std::size_t openDescriptors() { return entriesOf("/proc/self/fd"); }
inline std::size_t runningThreads() {
    // A sanitizer starts a thread of its own along with the program's first one. The first count must include
    // it.
    [[maybe_unused]] static const bool begun = [] {
        std::filesystem::path task;
        std::thread([&task] { task = "/proc/self/task/" + std::to_string(gettid()); }).join();
        while (std::filesystem::exists(task)) {
            std::this_thread::yield();
        }
        return true;
    }();
    return entriesOf("/proc/self/task");
}
/// The number of threads with this name. A thread may end while the list is read.
inline std::size_t runningThreads(const std::string& name) {
    std::size_t count = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string line;
        if (std::getline(std::ifstream(thread.path() / "comm"), line) && line == name) {
            ++count;
        }
    }
    return count;
}

} // namespace TestSupport
