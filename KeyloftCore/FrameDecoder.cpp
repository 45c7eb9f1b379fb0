#include "KeyloftCore/FrameDecoder.h"

#include "KeyloftCore/NativeMessageFrame.h"

#include <algorithm>
#include <utility>

namespace KeyloftCore {

namespace {

/// The maximum ratio of reserved memory to received bytes. It is large enough that a large frame that arrives
/// in large chunks needs only one allocation, and small enough that a peer cannot make the decoder reserve 1
/// MiB by sending only a length prefix.
constexpr std::size_t growthFactor = 32;

} // namespace

std::uint32_t FrameDecoder::announcedLength() const {
    std::uint32_t length = 0;
    for (std::size_t index = prefixLength; index-- > 0;) {
        length = (length << 8U) | prefix_.at(index);
    }
    return length;
}

void FrameDecoder::growFor(std::size_t more) {
    const std::size_t needed = payload_.size() + more;
    if (needed > payload_.capacity()) {
        payload_.reserve(std::min<std::size_t>(announcedLength(), needed * growthFactor));
    }
}

std::vector<std::string> FrameDecoder::append(std::string_view chunk) {
    std::vector<std::string> payloads;
    for (;;) {
        while (prefixCount_ < prefixLength && !chunk.empty()) {
            prefix_.at(prefixCount_++) = static_cast<unsigned char>(chunk.front());
            chunk.remove_prefix(1);
        }
        if (prefixCount_ < prefixLength) {
            return payloads;
        }
        // If the frame is too large, keep its prefix, so that every later call throws again.
        const std::size_t length = announcedLength();
        if (length > NativeMessageFrame::maxLength) {
            throw NativeMessageFrame::DecodeError::frameTooLarge(static_cast<std::int64_t>(length));
        }
        const std::size_t taken = std::min(length - payload_.size(), chunk.size());
        growFor(taken);
        payload_.append(chunk.substr(0, taken));
        chunk.remove_prefix(taken);
        if (payload_.size() < length) {
            return payloads;
        }
        payloads.push_back(std::exchange(payload_, {}));
        prefixCount_ = 0;
    }
}

} // namespace KeyloftCore
