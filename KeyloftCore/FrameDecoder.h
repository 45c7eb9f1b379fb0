#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace KeyloftCore {

/// Turns received chunks, cut anywhere, back into the payloads of whole frames. One decoder serves one
/// connection.
///
/// A plain value: a copy continues on its own. Each byte is copied once on its way into its payload, however
/// many chunks or frames there are, and memory is taken only for lengths within the limit, never much ahead
/// of the bytes that have really arrived.
class FrameDecoder {
public:
    /// Takes `chunk` and returns, in order, every payload that is now complete.
    ///
    /// Throws NativeMessageFrame::DecodeError as soon as a prefix beyond the limit is complete. The payloads
    /// completed in that very call are lost with it, and every later call throws the same again: the stream
    /// cannot be trusted to be at a frame's beginning ever after.
    std::vector<std::string> append(std::string_view chunk);

private:
    static constexpr std::size_t prefixLength = 4;

    std::uint32_t announcedLength() const;
    void growFor(std::size_t more);

    std::array<unsigned char, prefixLength> prefix_ = {};
    std::size_t prefixCount_ = 0;
    /// The payload as far as it has come, once the prefix is complete.
    std::string payload_;
};

} // namespace KeyloftCore
