#include "KeyloftBrowserKit/AddressInput.h"

#include <benchmark/benchmark.h>

#include <string_view>

namespace {

using KeyloftBrowserKit::AddressInput;

void resolve(benchmark::State& state, std::string_view text) {
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(AddressInput::resolve(text));
    }
}

BENCHMARK_CAPTURE(resolve, host, "www.example.test");
BENCHMARK_CAPTURE(resolve, hostPortAndPath, "example.test:8443/a/b?c=d");
BENCHMARK_CAPTURE(resolve, internationalHost, "münchen.example/straße");
BENCHMARK_CAPTURE(resolve, localAddress, "192.168.1.10:8080/admin");
BENCHMARK_CAPTURE(resolve, search, "how tall is the highest mountain?");
BENCHMARK_CAPTURE(resolve, url, "https://www.example.test/path/to/page.html?query=value#fragment");

} // namespace
