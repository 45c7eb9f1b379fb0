#pragma once

#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace Platform {

/// Owns a file descriptor and closes it when destroyed. A negative value means that there is no descriptor.
class Descriptor {
public:
    explicit Descriptor(int value = -1)
        : value_(value) {}
    /// Takes ownership of `value`, the result of `call`. Throws std::system_error if `value` is negative.
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

    /// Closes the descriptor if it is open. Returns false and sets `errno` on errors other than EINTR.
    bool close() {
        if (!isOpen()) {
            return true;
        }
        // EINTR is not an error, and the call must not be repeated, because the descriptor is already closed
        // and its number may refer to another file.
        return ::close(std::exchange(value_, -1)) == 0 || errno == EINTR;
    }

private:
    int value_;
};

} // namespace Platform
