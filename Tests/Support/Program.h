#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TestSupport {

/// A child process that runs a program of the project in the display session of the test. It is killed when
/// this object is destroyed or when the test exits, whichever comes first.
class Program {
public:
    /// Environment variables that override those of the test. A variable without a value is unset.
    using Environment = std::map<std::string, std::optional<std::string>>;

    Program(const std::filesystem::path& file, const std::vector<std::string>& arguments,
            const Environment& environment = {});
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    pid_t id() const { return process_; }
    void signal(int number) const;
    bool isRunning() const;
    /// Returns true if the process currently has a thread with this name.
    bool hasThread(const std::string& name) const;

    /// Waits until the program exits, and returns its exit status. Returns `std::nullopt` if the program does
    /// not exit in time or is terminated by a signal.
    std::optional<int> waitForExit();

    /// Returns the next line of the program's standard output, or `std::nullopt` if no line arrives in time.
    std::optional<std::string> nextLine();

    /// Everything that the program has written to standard error so far.
    std::string errors() const;

private:
    pid_t process_ = -1;
    int ended_ = -1;
    int output_ = -1;
    int errors_ = -1;
    std::string buffered_;
    std::optional<int> status_;
};

} // namespace TestSupport
