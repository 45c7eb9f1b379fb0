#pragma once

#include "Platform/Foundation/InputStream.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

/// An in-memory request body that records calls to `open`, `read` and `close`.
class MemoryStream : public Platform::InputStream {
public:
    explicit MemoryStream(std::string bytes)
        : bytes_(std::move(bytes)) {}

    void open() override { events.emplace_back("open"); }
    bool hasBytesAvailable() override { return offset_ < bytes_.size(); }
    std::ptrdiff_t read(std::span<char> buffer) override {
        events.push_back("read " + std::to_string(buffer.size()));
        if (events.size() > failsFrom) {
            return -1;
        }
        const auto count = std::min(buffer.size(), bytes_.size() - offset_);
        bytes_.copy(buffer.data(), count, offset_);
        offset_ += count;
        return static_cast<std::ptrdiff_t>(count);
    }
    void close() override { events.emplace_back("close"); }

    /// The recorded calls, in order.
    std::vector<std::string> events;
    /// The number of recorded calls after which `read` fails.
    std::size_t failsFrom = static_cast<std::size_t>(-1);

private:
    std::string bytes_;
    std::size_t offset_ = 0;
};

} // namespace TestSupport
