#pragma once

#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace TestSupport {

/// Closes a descriptor when it goes.
class Descriptor {
public:
    Descriptor() = default;
    /// A negative value stands for none.
    explicit Descriptor(int value)
        : value_(value) {}
    /// What `call` returned; throws std::system_error where that is none.
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
    ~Descriptor() { reset(); }

    int get() const { return value_; }
    void reset() {
        if (value_ >= 0) {
            ::close(std::exchange(value_, -1));
        }
    }

private:
    int value_ = -1;
};

} // namespace TestSupport
