#pragma once

#include <functional>
#include <utility>

namespace Platform {

/// A registration that ends when this token does: destroyed, reset or assigned over. Ending is idempotent.
///
/// A token belongs to one thread at a time.
class [[nodiscard]] Observation {
public:
    /// Observes nothing.
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
        // Emptied first: what ends the observation may destroy the owner of this token.
        if (const auto end = std::exchange(end_, nullptr)) {
            end();
        }
    }

    /// Whether there is anything to end.
    explicit operator bool() const noexcept { return static_cast<bool>(end_); }

private:
    std::function<void()> end_;
};

} // namespace Platform
