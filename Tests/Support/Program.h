#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TestSupport {

/// A program of the project that runs in a separate process, in the test's session. The process ends with
/// this object, or with the test if that ends first.
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
    /// Returns true if one of its threads has this name now.
    bool hasThread(const std::string& name) const;

    /// Waits until the program ends and returns its exit status. Returns nothing if it does not end or a
    /// signal ended it.
    std::optional<int> waitForExit();

    /// Returns the next line of its standard output, or nothing if no line comes.
    std::optional<std::string> nextLine();

    /// Everything it has written to standard error so far.
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
