// Compares `FrameDecoder` with a simple model, which buffers all unconsumed bytes and parses the buffer from
// its beginning on each call.

#include "KeyloftCore/FrameDecoder.h"
#include "KeyloftCore/NativeMessageFrame.h"
#include "Platform/Foundation/FatalError.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using KeyloftCore::FrameDecoder;
using KeyloftCore::NativeMessageFrame;

void require(bool condition, std::string_view promise) {
    if (!condition) {
        Platform::fatalError(promise);
    }
}

/// The result of one `append` call: the decoded payloads, or the frame length that was rejected.
struct Outcome {
    std::vector<std::string> payloads;
    std::optional<std::int64_t> refused;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

struct Model {
    Outcome append(std::string_view chunk) {
        buffer += chunk;
        Outcome outcome;
        for (;;) {
            if (buffer.size() < 4) {
                return outcome;
            }
            std::size_t length = 0;
            for (std::size_t index = 0; index < 4; ++index) {
                length |= std::size_t{static_cast<unsigned char>(buffer[index])} << (8 * index);
            }
            if (length > NativeMessageFrame::maxLength) {
                return {.payloads = {}, .refused = static_cast<std::int64_t>(length)};
            }
            if (buffer.size() < length + 4) {
                return outcome;
            }
            outcome.payloads.push_back(buffer.substr(4, length));
            buffer.erase(0, length + 4);
        }
    }

    std::string buffer;
};

Outcome append(FrameDecoder& decoder, std::string_view chunk) {
    try {
        return {.payloads = decoder.append(chunk), .refused = std::nullopt};
    } catch (const NativeMessageFrame::DecodeError& error) {
        return {.payloads = {}, .refused = error.length()};
    }
}

} // namespace

/// The first byte seeds a sequence of sizes from 0 to 12 bytes. The remaining bytes are split into chunks of
/// these sizes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::string_view stream(reinterpret_cast<const char*>(data), size);
    std::size_t cut = static_cast<unsigned char>(stream.front());
    stream.remove_prefix(1);

    FrameDecoder decoder;
    Model model;
    while (!stream.empty()) {
        const auto chunk = stream.substr(0, cut % 13);
        stream.remove_prefix(chunk.size());
        cut = cut * 5 + 1;
        const FrameDecoder before = decoder;
        const auto expected = model.append(chunk);
        require(append(decoder, chunk) == expected, "the decoder agrees with the model");
        FrameDecoder copy = before;
        require(append(copy, chunk) == expected, "a copy behaves like the original");
        for (const auto& payload : expected.payloads) {
            FrameDecoder fresh;
            require(append(fresh, NativeMessageFrame::encode(payload)).payloads == std::vector{payload},
                    "an encoded payload decodes to itself");
        }
        if (expected.refused) {
            require(append(decoder, "") == expected, "a refused prefix stays refused");
            return 0;
        }
    }
    return 0;
}
