#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TestSupport {

/// A program of ours that runs as a process of its own, in the test's session. It ends with this object, or
/// with the test should that come first.
class Program {
public:
    /// Variables that differ from the test's own environment; those without a value are unset.
    using Environment = std::map<std::string, std::optional<std::string>>;

    Program(const std::filesystem::path& file, const std::vector<std::string>& arguments,
            const Environment& environment = {});
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    pid_t id() const { return process_; }
    void signal(int number) const;
    bool isRunning() const;
    /// Whether one of its threads has the name now.
    bool hasThread(const std::string& name) const;

    /// Waits until the program has ended; its exit status, or nothing if it did not end or a signal ended it.
    std::optional<int> waitForExit();

    /// The next line of its standard output; nothing if none comes.
    std::optional<std::string> nextLine();

    /// All it has written to its standard error so far.
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
