#pragma once

#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

/// Counts the resources that this process uses, as listed in /proc.
namespace TestSupport {

inline std::size_t entriesOf(const std::filesystem::path& directory) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(directory)) {
        ++count;
    }
    return count;
}

/// The number of open file descriptors of this process, including the one with which /proc is read.
inline std::size_t openDescriptors() { return entriesOf("/proc/self/fd"); }
inline std::size_t runningThreads() {
    // Sanitizers start a background thread together with the first thread of the program. Start a thread
    // before the first count, so that every count includes the background thread.
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
/// The number of threads of this process that have this name. Ignores threads that exit while /proc is read.
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
