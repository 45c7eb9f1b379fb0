// Compares the decoding of frames with a memcpy of the same bytes, and measures the other steps of a relay
// exchange.

#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/FrameDecoder.h"
#include "KeyloftCore/NativeMessageFrame.h"
#include "KeyloftCore/RelayProtocol.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/Foundation/JSON.h"
#include "Tests/Support/Present.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

using KeyloftCore::AuthorizeRequest;
using KeyloftCore::FrameDecoder;
using KeyloftCore::NativeMessageFrame;
using KeyloftCore::RelayProtocol;
using KeyloftCore::RelayTarget;
using Platform::JSONValue;

constexpr std::size_t chunkSize = 65'536;
constexpr std::size_t streamSize = std::size_t{4} << 20U;
constexpr std::string_view nonce = "ABCDEFGHIJKLMNOPQRST-_";

std::string streamOf(std::size_t payloadSize) {
    const auto frame = NativeMessageFrame::encode(std::string(payloadSize, 'x'));
    std::string stream;
    while (stream.size() < streamSize) {
        stream += frame;
    }
    return stream;
}

template <typename Take>
void inChunks(std::string_view stream, const Take& take) {
    for (std::size_t offset = 0; offset < stream.size(); offset += chunkSize) {
        take(stream.substr(offset, chunkSize));
    }
}

/// The baseline for `decoding`: copies each chunk once, into a buffer that is larger than a payload.
void copying(benchmark::State& state) {
    const auto payloadSize = static_cast<std::size_t>(state.range(0));
    const auto stream = streamOf(payloadSize);
    std::string target(std::max(payloadSize, chunkSize) + chunkSize, '\0');
    for ([[maybe_unused]] auto _ : state) {
        std::size_t offset = 0;
        inChunks(stream, [&](std::string_view chunk) {
            offset = offset + chunk.size() > target.size() ? 0 : offset;
            std::memcpy(target.data() + offset, chunk.data(), chunk.size());
            benchmark::DoNotOptimize(target.data());
            benchmark::ClobberMemory();
            offset += chunk.size();
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.size()));
}

void decoding(benchmark::State& state) {
    const auto stream = streamOf(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        FrameDecoder decoder;
        inChunks(stream, [&](std::string_view chunk) {
            auto payloads = decoder.append(chunk);
            benchmark::DoNotOptimize(payloads);
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.size()));
}

/// Decodes many frames from one chunk. The time per byte must not depend on the number of frames.
void decodingManyFramesInOneChunk(benchmark::State& state) {
    const auto frame = NativeMessageFrame::encode(std::string(64, 'x'));
    std::string chunk;
    for (std::int64_t count = 0; count < state.range(0); ++count) {
        chunk += frame;
    }
    for ([[maybe_unused]] auto _ : state) {
        FrameDecoder decoder;
        auto payloads = decoder.append(chunk);
        benchmark::DoNotOptimize(payloads);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(chunk.size()));
}

/// Decodes one frame from many chunks. The benchmark's argument is the size of each chunk. The time per byte
/// must not depend on the number of chunks.
void decodingOneFrameInPieces(benchmark::State& state) {
    const auto frame = NativeMessageFrame::encode(std::string(NativeMessageFrame::maxLength, 'x'));
    const auto piece = static_cast<std::size_t>(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        FrameDecoder decoder;
        for (std::size_t offset = 0; offset < frame.size(); offset += piece) {
            auto payloads = decoder.append(std::string_view(frame).substr(offset, piece));
            benchmark::DoNotOptimize(payloads);
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(frame.size()));
}

void encoding(benchmark::State& state) {
    const std::string payload(static_cast<std::size_t>(state.range(0)), 'x');
    for ([[maybe_unused]] auto _ : state) {
        auto frame = NativeMessageFrame::encode(payload);
        benchmark::DoNotOptimize(frame);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

Platform::URL authorizeURL() {
    return TestSupport::present(Platform::URL::fromString(
        "https://appleid.apple.com/auth/"
        "authorize?client_id=com.example.client&redirect_uri=https%3A%2F%2Fclient."
        "example%2Fcallback&response_mode=form_post&response_type=code%20id_token&scope=name%20email&"
        "state=a-"
        "state"));
}

void replyToConfirm(benchmark::State& state) {
    const AuthorizeRequest request(authorizeURL(), std::string(nonce));
    const JSONValue::Object message{{"type", "confirm"},
                                    {"redirectUri", "https://client.example/callback"},
                                    {"state", "a-state"},
                                    {"nonce", nonce},
                                    {"padding", std::string(150, 'p')}};
    const auto data = Platform::compactJSON(message, Platform::JSONSlashes::plain);
    for ([[maybe_unused]] auto _ : state) {
        auto reply = RelayProtocol::reply(data, request);
        benchmark::DoNotOptimize(reply);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data.size()));
}

void replyToResult(benchmark::State& state) {
    const AuthorizeRequest request(authorizeURL(), std::string(nonce));
    const auto size = static_cast<std::size_t>(state.range(0));
    const JSONValue::Object message{
        {"type", "result"},
        {"redirectUri", "https://client.example/callback"},
        {"nonce", nonce},
        {"params", JSONValue::Object{{"state", "a-state"}, {"code", std::string(size - 150, 'c')}}}};
    const auto data = Platform::compactJSON(message, Platform::JSONSlashes::plain);
    for ([[maybe_unused]] auto _ : state) {
        auto reply = RelayProtocol::reply(data, request);
        benchmark::DoNotOptimize(reply);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data.size()));
}

void mintNonce(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        auto minted = RelayTarget::mintNonce();
        benchmark::DoNotOptimize(minted);
    }
}

void makeAuthorizeRequest(benchmark::State& state) {
    const auto url = authorizeURL();
    for ([[maybe_unused]] auto _ : state) {
        AuthorizeRequest request(url, std::string(nonce));
        benchmark::DoNotOptimize(request);
    }
}

void makeRelayURL(benchmark::State& state) {
    const AuthorizeRequest request(authorizeURL(), std::string(nonce));
    for ([[maybe_unused]] auto _ : state) {
        auto url = request.safariRelayURL();
        benchmark::DoNotOptimize(url);
    }
}

void readFragment(benchmark::State& state) {
    const auto fragment = AuthorizeRequest(authorizeURL(), std::string(nonce)).relayTarget().fragment();
    for ([[maybe_unused]] auto _ : state) {
        auto target = RelayTarget::fromFragment(fragment);
        benchmark::DoNotOptimize(target);
    }
}

BENCHMARK(copying)->Arg(1 << 20)->Arg(64);
BENCHMARK(decoding)->Arg(1 << 20)->Arg(64);
BENCHMARK(decodingManyFramesInOneChunk)->RangeMultiplier(8)->Range(1, 1 << 15);
BENCHMARK(decodingOneFrameInPieces)->RangeMultiplier(16)->Range(16, 1 << 20);
BENCHMARK(encoding)->Arg(300)->Arg(1 << 20);
BENCHMARK(replyToConfirm);
BENCHMARK(replyToResult)->Arg(300)->Arg(1 << 20);
BENCHMARK(mintNonce);
BENCHMARK(makeAuthorizeRequest);
BENCHMARK(makeRelayURL);
BENCHMARK(readFragment);

} // namespace
