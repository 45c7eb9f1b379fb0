#pragma once

#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace Platform {

/// Owns a file descriptor and closes it. A negative value means that it owns none.
class Descriptor {
public:
    explicit Descriptor(int value = -1)
        : value_(value) {}
    /// Takes ownership of `value`, which the function named `call` returned. Throws std::system_error with
    /// `errno` if it is negative.
    Descriptor(int value, const std::string& call)
        : value_(value) {
        if (value < 0) {
            throw std::system_error(errno, std::generic_category(), call);
        }
    }
    Descriptor(Descriptor&& other) noexcept
        : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const { return value_; }
    bool isOpen() const { return value_ >= 0; }

    /// Returns false, with `errno`, if the kernel reports that an earlier write failed.
    bool close() {
        if (!isOpen()) {
            return true;
        }
        // Even after EINTR the descriptor is closed, and its number may already belong to another file.
        return ::close(std::exchange(value_, -1)) == 0 || errno == EINTR;
    }

private:
    int value_;
};

} // namespace Platform
