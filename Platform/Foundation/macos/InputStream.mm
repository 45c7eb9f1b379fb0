#include "Platform/Foundation/macos/InputStream.h"

#include <cstdint>

namespace Platform {

namespace {

class NativeInputStream final : public InputStream {
public:
    explicit NativeInputStream(NSInputStream* stream)
        : stream_(stream) {}

    void open() override { [stream_ open]; }
    bool hasBytesAvailable() override { return stream_.hasBytesAvailable; }
    std::ptrdiff_t read(std::span<char> buffer) override {
        return [stream_ read:reinterpret_cast<std::uint8_t*>(buffer.data()) maxLength:buffer.size()];
    }
    void close() override { [stream_ close]; }

private:
    NSInputStream* stream_;
};

} // namespace

std::shared_ptr<InputStream> fromNSInputStream(NSInputStream* stream) {
    return stream == nil ? nullptr : std::make_shared<NativeInputStream>(stream);
}

} // namespace Platform
