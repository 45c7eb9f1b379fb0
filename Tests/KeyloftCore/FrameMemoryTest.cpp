// Tests how much memory a decoder allocates, and that a listener frees its memory. These tests are a separate
// program because they replace operator new.

#include "KeyloftCore/FrameDecoder.h"
#include "KeyloftCore/NativeMessageFrame.h"
#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelaySocketClient.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

namespace {

/// Size of the largest allocation, and total size of all allocations, that this thread has made since the
/// last reset, in bytes.
thread_local std::size_t largest = 0;
thread_local std::size_t total = 0;
/// Number of blocks that any thread has allocated and that have not been freed.
std::atomic<long> liveBlocks = 0;

void release(void* memory) {
    liveBlocks -= memory != nullptr ? 1 : 0;
    std::free(memory); // NOLINT(cppcoreguidelines-*): implements operator delete
}

} // namespace

// NOLINTBEGIN(cppcoreguidelines-*,misc-new-delete-overloads,clang-analyzer-cplusplus.NewDelete)
void* operator new(std::size_t size) {
    largest = std::max(largest, size);
    total += size;
    if (void* memory = std::malloc(size)) {
        ++liveBlocks;
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
// NOLINTEND(cppcoreguidelines-*,misc-new-delete-overloads,clang-analyzer-cplusplus.NewDelete)

namespace {

using namespace std::string_view_literals;
using KeyloftCore::FrameDecoder;
using KeyloftCore::NativeMessageFrame;

template <typename Body>
std::size_t largestRequestIn(const Body& body) {
    largest = 0;
    body();
    return largest;
}

TEST(FrameDecoderMemory, theWatchWorks) {
    std::string text;
    EXPECT_GE(largestRequestIn([&] { text.assign(100'000, 'x'); }), 100'000U);
}

TEST(FrameDecoderMemory, aRefusedLengthIsNeverAllocated) {
    FrameDecoder decoder;
    const std::string chunk(65'536, 'x');
    EXPECT_LT(largestRequestIn([&] {
                  EXPECT_THROW(decoder.append("\xFF\xFF\xFF\xFF some bytes"),
                               NativeMessageFrame::DecodeError);
                  // Input after the rejected prefix must not be buffered either.
                  for (int turn = 0; turn < 10; ++turn) {
                      EXPECT_THROW(decoder.append(chunk), NativeMessageFrame::DecodeError);
                  }
              }),
              4096U);
}

TEST(FrameDecoderMemory, aBarePrefixCostsNothing) {
    FrameDecoder decoder;
    EXPECT_EQ(largestRequestIn([&] { decoder.append("\0\0\x10\0"sv); }), 0U);
}

TEST(FrameDecoderMemory, memoryFollowsTheBytesThatHaveCome) {
    FrameDecoder decoder;
    decoder.append("\0\0\x10\0"sv);
    std::size_t sent = 0;
    for (int turn = 0; turn < 200; ++turn) {
        const auto request = largestRequestIn([&] { decoder.append("0123456789"); });
        sent += 10;
        EXPECT_LE(request, sent * 32 + 64);
    }
}

TEST(FrameDecoderMemory, aLargeFrameInLargeChunksIsPlacedOnce) {
    const auto frame = NativeMessageFrame::encode(std::string(NativeMessageFrame::maxLength, 'x'));
    FrameDecoder decoder;
    total = 0;
    for (std::size_t offset = 0; offset < frame.size(); offset += 65'536) {
        decoder.append(std::string_view(frame).substr(offset, 65'536));
    }
    EXPECT_LT(total, NativeMessageFrame::maxLength + 4096);
}

TEST(RelayListenerMemory, closedConnectionsLeaveNothingBehind) {
    const TestSupport::TemporaryDirectory directory;
    const auto path = directory / "relay.sock";
    KeyloftCore::RelayListener listener;
    listener.listen(path, [](const std::string& request, const KeyloftCore::RelayListener::Reply& reply) {
        reply(request);
    });
    const auto exchange = [&](int times) {
        for (int turn = 0; turn < times; ++turn) {
            const auto client = KeyloftCore::RelaySocketClient::connect(path);
            client.writeFrame("x");
            EXPECT_EQ(client.readFrame(30), "x");
            client.close();
        }
    };
    exchange(20);
    const long before = liveBlocks;
    exchange(200);
    // Connections may still be closing when the blocks are counted, so allow for a small difference.
    EXPECT_TRUE(TestSupport::eventually([&] { return liveBlocks < before + 100; })) << liveBlocks - before;
}

} // namespace
