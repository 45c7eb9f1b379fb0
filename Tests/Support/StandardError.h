#pragma once

#include "Tests/Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace TestSupport {

/// Captures the standard error output of this process, and of processes that it launches, for the lifetime of
/// the object. The destructor writes the captured output to the original standard error.
class StandardError {
public:
    StandardError()
        : saved_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        std::fflush(stderr);
        const int file = ::open(path().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        EXPECT_GE(file, 0);
        ::dup2(file, STDERR_FILENO);
        ::close(file);
    }
    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;
    ~StandardError() {
        ::dup2(saved_, STDERR_FILENO);
        ::close(saved_);
        std::fputs(text().c_str(), stderr);
    }

    std::string text() const { return contentsOf(path()); }

private:
    std::string path() const { return directory_ / "standard-error"; }

    TemporaryDirectory directory_;
    int saved_;
};

} // namespace TestSupport
