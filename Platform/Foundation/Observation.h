#pragma once

#include <functional>
#include <utility>

namespace Platform {

/// A registration that ends when this token is destroyed, reset or assigned to. Ending is idempotent.
///
/// A token belongs to one thread at a time.
class [[nodiscard]] Observation {
public:
    /// Creates a token without an observation.
    Observation() = default;
    /// `end` is called once, at the end of the observation. It must not throw.
    explicit Observation(std::function<void()> end)
        : end_(std::move(end)) {}

    Observation(Observation&& other) noexcept
        : end_(std::exchange(other.end_, nullptr)) {}
    Observation& operator=(Observation&& other) noexcept {
        if (this != &other) {
            reset();
            end_ = std::exchange(other.end_, nullptr);
        }
        return *this;
    }
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;
    ~Observation() { reset(); }

    /// Ends the observation now.
    void reset() noexcept {
        // Empty the token first, because `end` may destroy its owner.
        if (const auto end = std::exchange(end_, nullptr)) {
            end();
        }
    }

    /// Returns true if there is an observation to end.
    explicit operator bool() const noexcept { return static_cast<bool>(end_); }

private:
    std::function<void()> end_;
};

} // namespace Platform
