#pragma once

#include <functional>
#include <utility>

namespace Platform {

/// A token for a registered observer. The observation ends when the token is destroyed, reset or assigned to.
/// Ending it more than once has no effect.
///
/// A token must not be used by more than one thread at a time.
class [[nodiscard]] Observation {
public:
    /// Creates a token without an observation.
    Observation() = default;
    /// `end` is called once, when the observation ends. It must not throw.
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

    /// Ends the observation, if any.
    void reset() noexcept {
        // Empty the token first, because `end` may destroy the object that owns the token.
        if (const auto end = std::exchange(end_, nullptr)) {
            end();
        }
    }

    /// Returns true if the token holds an observation that has not ended.
    explicit operator bool() const noexcept { return static_cast<bool>(end_); }

private:
    std::function<void()> end_;
};

} // namespace Platform
