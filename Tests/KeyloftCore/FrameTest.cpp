#include "KeyloftCore/FrameDecoder.h"
#include "KeyloftCore/NativeMessageFrame.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;
using KeyloftCore::FrameDecoder;
using KeyloftCore::NativeMessageFrame;
using DecodeError = NativeMessageFrame::DecodeError;
using Payloads = std::vector<std::string>;

std::string encode(std::string_view payload) { return NativeMessageFrame::encode(payload); }

/// Passes `chunk` to the decoder. Returns the frame length that the decoder rejects, or `std::nullopt` if it
/// accepts the chunk.
std::optional<std::int64_t> refused(FrameDecoder& decoder, std::string_view chunk) {
    try {
        decoder.append(chunk);
    } catch (const DecodeError& error) {
        return error.length();
    }
    return std::nullopt;
}

TEST(NativeMessageFrame, encodesAnEmptyPayloadAsItsLengthAlone) { EXPECT_EQ(encode(""), "\0\0\0\0"sv); }

TEST(NativeMessageFrame, encodesTheLengthLittleEndianInFrontOfThePayload) {
    EXPECT_EQ(encode("abc"), "\x03\0\0\0abc"sv);
    const auto frame = encode(std::string(0x030201, 'x'));
    EXPECT_EQ(frame.substr(0, 4), "\x01\x02\x03\0"sv);
    EXPECT_EQ(frame.size(), 0x030201U + 4);
}

TEST(NativeMessageFrame, leavesThePayloadsBytesAlone) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes.push_back(static_cast<char>(byte));
    }
    EXPECT_EQ(encode(bytes).substr(4), bytes);
}

TEST(NativeMessageFrame, theLimitIsOneMebibyte) { EXPECT_EQ(NativeMessageFrame::maxLength, 1'048'576U); }

TEST(NativeMessageFrame, encodesMoreThanADecoderTakes) {
    const auto frame = encode(std::string(2 << 20, 'x'));
    EXPECT_EQ(frame.size(), (2U << 20U) + 4);
    FrameDecoder decoder;
    EXPECT_EQ(refused(decoder, frame), 2'097'152);
}

TEST(NativeMessageFrame, theErrorShowsItsLength) {
    EXPECT_STREQ(DecodeError::frameTooLarge(1'048'577).what(), "frameTooLarge(1048577)");
    EXPECT_EQ(DecodeError::frameTooLarge(5), DecodeError::frameTooLarge(5));
    EXPECT_NE(DecodeError::frameTooLarge(5), DecodeError::frameTooLarge(6));
}

TEST(NativeMessageFrameDeathTest, aPayloadBeyondThirtyTwoBitsStopsTheProcess) {
    // The pages are never touched, so the mapping uses only address space.
    constexpr std::size_t size = std::size_t{1} << 32U;
    void* area = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(area, MAP_FAILED);
    EXPECT_DEATH(NativeMessageFrame::encode({static_cast<const char*>(area), size}),
                 "a relay frame's payload does not fit in 32 bits");
    munmap(area, size);
}

TEST(FrameDecoder, decodesAnEmptyPayload) {
    FrameDecoder decoder;
    EXPECT_EQ(decoder.append(encode("")), Payloads{""});
    EXPECT_EQ(decoder.append(encode("") + encode("")), (Payloads{"", ""}));
}

TEST(FrameDecoder, aFrameByteByByteComesWithItsLastByte) {
    FrameDecoder decoder;
    const auto frame = encode("hello");
    for (std::size_t index = 0; index + 1 < frame.size(); ++index) {
        EXPECT_EQ(decoder.append(frame.substr(index, 1)), Payloads()) << index;
    }
    EXPECT_EQ(decoder.append(frame.substr(frame.size() - 1)), Payloads{"hello"});
}

TEST(FrameDecoder, severalFramesInOneChunkComeInOrderAndHalfAFrameStays) {
    FrameDecoder decoder;
    const auto third = encode("the third");
    EXPECT_EQ(decoder.append(encode("one") + encode("two") + third.substr(0, 7)), (Payloads{"one", "two"}));
    EXPECT_EQ(decoder.append(third.substr(7)), Payloads{"the third"});
}

TEST(FrameDecoder, fewerBytesThanAPrefixAreKeptWithoutLookingAtThem) {
    FrameDecoder decoder;
    EXPECT_EQ(decoder.append("\xFF\xFF\xFF"), Payloads());
    EXPECT_EQ(decoder.append(""), Payloads());
    EXPECT_EQ(refused(decoder, "\xFF"), 0xFFFFFFFFLL);
}

TEST(FrameDecoder, theLongestPayloadIsTakenAndOneByteMoreIsRefusedAtOnce) {
    FrameDecoder decoder;
    EXPECT_EQ(decoder.append("\0\0\x10\0"sv), Payloads());
    const std::string payload(NativeMessageFrame::maxLength, 'x');
    EXPECT_EQ(decoder.append(payload), Payloads{payload});

    FrameDecoder other;
    EXPECT_EQ(other.append("\x01\0\x10"sv), Payloads());
    EXPECT_EQ(refused(other, "\0"sv), 1'048'577);
}

TEST(FrameDecoder, aRefusedPrefixIsRefusedForEver) {
    FrameDecoder decoder;
    EXPECT_EQ(refused(decoder, "\x01\0\x10\0rest"sv), 1'048'577);
    EXPECT_EQ(refused(decoder, ""), 1'048'577);
    EXPECT_EQ(refused(decoder, encode("a good frame")), 1'048'577);
    FrameDecoder copy = decoder;
    EXPECT_EQ(refused(copy, ""), 1'048'577);
}

TEST(FrameDecoder, aGoodFrameInFrontOfARefusedPrefixIsLostWithIt) {
    FrameDecoder decoder;
    EXPECT_EQ(refused(decoder, encode("good") + "\xFF\xFF\xFF\xFF"), 0xFFFFFFFFLL);
    EXPECT_EQ(refused(decoder, ""), 0xFFFFFFFFLL);
}

TEST(FrameDecoder, framesReturnedBeforeARefusedPrefixWereGood) {
    FrameDecoder decoder;
    EXPECT_EQ(decoder.append(encode("good") + "\xFF\xFF"), Payloads{"good"});
    EXPECT_EQ(refused(decoder, "\xFF\xFF"), 0xFFFFFFFFLL);
}

TEST(FrameDecoder, aCopyContinuesOnItsOwn) {
    FrameDecoder decoder;
    const auto frame = encode("hello");
    decoder.append(frame.substr(0, 6));
    FrameDecoder copy = decoder;
    EXPECT_EQ(copy.append("LLO"), Payloads{"heLLO"});
    EXPECT_EQ(decoder.append("llo"), Payloads{"hello"});
    EXPECT_EQ(copy.append(encode("more")), Payloads{"more"});
}

TEST(FrameDecoder, payloadsAreIndependentOfTheDecoder) {
    FrameDecoder decoder;
    const auto second = encode("the second, longer than any text that is kept in place");
    const auto first = decoder.append(encode("first") + second.substr(0, 20));
    EXPECT_EQ(decoder.append(second.substr(20)), Payloads{second.substr(4)});
    EXPECT_EQ(first, Payloads{"first"});
}

TEST(FrameDecoder, everyCutOfAStreamGivesTheSamePayloads) {
    Payloads payloads;
    std::string stream;
    for (const std::size_t size : {0, 1, 3, 4, 5, 0, 0, 17, 255, 256, 300}) {
        payloads.emplace_back(size, static_cast<char>('a' + payloads.size()));
        stream += encode(payloads.back());
    }
    for (std::size_t first = 0; first <= stream.size(); ++first) {
        for (const std::size_t second : {first, std::min(first + 3, stream.size()), stream.size()}) {
            FrameDecoder decoder;
            Payloads got;
            for (const auto chunk : {std::string_view(stream).substr(0, first),
                                     std::string_view(stream).substr(first, second - first),
                                     std::string_view(stream).substr(second)}) {
                for (auto& payload : decoder.append(chunk)) {
                    got.push_back(std::move(payload));
                }
            }
            ASSERT_EQ(got, payloads) << first << ", " << second;
        }
    }
}

TEST(FrameDecoder, randomChunksOfRandomFramesGiveThePayloads) {
    std::mt19937 random(7); // NOLINT: the same sequence every time is what is wanted
    for (int turn = 0; turn < 50; ++turn) {
        Payloads payloads;
        std::string stream;
        for (int count = 0; count < 20; ++count) {
            const auto size = random() % (random() % 4 == 0 ? 70'000 : 100);
            payloads.emplace_back(size, static_cast<char>(random()));
            stream += encode(payloads.back());
        }
        FrameDecoder decoder;
        Payloads got;
        for (std::size_t offset = 0; offset < stream.size();) {
            const auto size = 1 + random() % (random() % 3 == 0 ? 65'536 : 64);
            for (auto& payload : decoder.append(std::string_view(stream).substr(offset, size))) {
                got.push_back(std::move(payload));
            }
            offset += size;
        }
        ASSERT_EQ(got, payloads);
    }
}

} // namespace
