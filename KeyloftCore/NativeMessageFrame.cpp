#include "KeyloftCore/NativeMessageFrame.h"

#include "Platform/Foundation/FatalError.h"

#include <limits>

namespace KeyloftCore {

std::string NativeMessageFrame::encode(std::string_view payload) {
    if (payload.size() > std::numeric_limits<std::uint32_t>::max()) {
        Platform::fatalError("a relay frame's payload does not fit in 32 bits");
    }
    const auto count = static_cast<std::uint32_t>(payload.size());
    std::string frame;
    frame.reserve(payload.size() + 4);
    for (unsigned shift = 0; shift < 32; shift += 8) {
        frame.push_back(static_cast<char>((count >> shift) & 0xFFU));
    }
    frame.append(payload);
    return frame;
}

} // namespace KeyloftCore
