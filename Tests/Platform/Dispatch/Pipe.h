#pragma once

#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

namespace TestSupport {

/// A pipe whose ends are closed when this object is destroyed.
class Pipe {
public:
    Pipe() {
        if (pipe(ends_.data()) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeReadEnd();
        closeWriteEnd();
    }

    int readEnd() const { return ends_[0]; }
    int writeEnd() const { return ends_[1]; }
    /// Returns the read end and transfers its ownership to the caller, who must close it.
    int takeReadEnd() {
        const int end = ends_[0];
        ends_[0] = -1;
        return end;
    }
    void put(std::string_view text) const {
        [[maybe_unused]] const auto written = write(ends_[1], text.data(), text.size());
    }
    void closeReadEnd() { closeEnd(ends_[0]); }
    void closeWriteEnd() { closeEnd(ends_[1]); }

private:
    static void closeEnd(int& end) {
        if (end >= 0) {
            close(end);
            end = -1;
        }
    }

    std::array<int, 2> ends_ = {-1, -1};
};

} // namespace TestSupport
