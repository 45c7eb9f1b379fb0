#pragma once

#include <cstddef>
#include <span>

namespace Platform {

/// A stream of bytes, such as the body of a request. Must not be used by more than one thread at a time.
class InputStream {
public:
    InputStream() = default;
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    virtual ~InputStream() = default;

    /// Opens the stream. Must be called once, before the first `read`.
    virtual void open() = 0;
    /// Returns true if bytes are available, or if only a call to `read` can determine whether they are.
    virtual bool hasBytesAvailable() = 0;
    /// Reads into `buffer`. Returns the number of bytes read, 0 at the end, or a negative value on failure.
    virtual std::ptrdiff_t read(std::span<char> buffer) = 0;
    virtual void close() = 0;
};

} // namespace Platform
