#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace KeyloftCore {

/// Decodes the frames in a stream that is received in chunks of any size. Each connection needs a decoder of
/// its own.
///
/// A plain value; a copy decodes independently. The time to decode is linear in the bytes received, for any
/// number of chunks and frames. Memory is allocated only for lengths within the limit and in proportion to
/// the bytes received.
class FrameDecoder {
public:
    /// Consumes `chunk` and returns the payloads that it completes, in order.
    ///
    /// Throws NativeMessageFrame::DecodeError as soon as a prefix beyond the limit is complete. Payloads that
    /// the same call has completed are lost. Every later call throws the same error, because the start of the
    /// next frame is unknown.
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
