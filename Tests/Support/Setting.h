#pragma once

#include <utility>

namespace TestSupport {

/// Changes a setting of the program for as long as it lives.
template <typename Value>
class Setting {
public:
    Setting(Value& setting, Value value)
        : setting_(setting)
        , before_(std::exchange(setting, value)) {}
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;
    ~Setting() { setting_ = before_; }

private:
    Value& setting_;
    Value before_;
};

} // namespace TestSupport
