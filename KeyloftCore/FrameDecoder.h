#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace KeyloftCore {

/// Decodes the frames in a byte stream that is received in chunks of any size. Use a separate decoder for
/// each connection.
///
/// A plain value type; copies decode independently. Decoding takes time linear in the number of received
/// bytes, regardless of the number of chunks and frames. Memory is allocated only for payload lengths within
/// the limit, and in proportion to the number of received bytes.
class FrameDecoder {
public:
    /// Consumes `chunk` and returns the payloads that it completes, in order.
    ///
    /// Throws NativeMessageFrame::DecodeError as soon as it has read a complete length prefix that exceeds
    /// the limit. Payloads completed by the same call are lost. Every later call throws the same error,
    /// because the start of the next frame is unknown.
    std::vector<std::string> append(std::string_view chunk);

private:
    static constexpr std::size_t prefixLength = 4;

    std::uint32_t announcedLength() const;
    void growFor(std::size_t more);

    std::array<unsigned char, prefixLength> prefix_ = {};
    std::size_t prefixCount_ = 0;
    /// The part of the payload received so far. Empty until the prefix is complete.
    std::string payload_;
};

} // namespace KeyloftCore
