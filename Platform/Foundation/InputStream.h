#pragma once

#include <cstddef>
#include <span>

namespace Platform {

/// Bytes that come one after the other, a request's body for example. One thread at a time.
class InputStream {
public:
    InputStream() = default;
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    virtual ~InputStream() = default;

    /// To be called once, before anything is read.
    virtual void open() = 0;
    /// Whether `read` would give bytes, or cannot tell without trying.
    virtual bool hasBytesAvailable() = 0;
    /// Reads at most as many bytes as `buffer` has room for. How many they were: 0 at the end, less after a
    /// failure.
    virtual std::ptrdiff_t read(std::span<char> buffer) = 0;
    virtual void close() = 0;
};

} // namespace Platform
