#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace TestSupport {

/// Sets an environment variable for the lifetime of the object. The destructor restores the previous value.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value)
        : name_(name) {
        if (const char* previous = std::getenv(name); previous != nullptr) {
            previous_ = previous;
        }
        set(value);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable() { set(previous_ ? previous_->c_str() : nullptr); }

private:
    void set(const char* value) const {
        if (value != nullptr) {
            setenv(name_, value, 1);
        } else {
            unsetenv(name_);
        }
    }

    const char* name_;
    std::optional<std::string> previous_;
};

} // namespace TestSupport
