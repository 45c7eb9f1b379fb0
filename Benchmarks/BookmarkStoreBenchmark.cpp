#include "KeyloftBrowserKit/BookmarkStore.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/JSON.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

using KeyloftBrowserKit::Bookmark;
using KeyloftBrowserKit::BookmarkStore;
using Platform::FileManager;
using Platform::URL;

URL url(const std::string& text) {
    const auto parsed = URL::fromString(text);
    if (!parsed) {
        std::abort();
    }
    return *parsed;
}

/// A temporary bookmarks file that is deleted when this object is destroyed.
class BookmarksFile {
public:
    explicit BookmarksFile(std::int64_t count) {
        std::string pattern = (fs::temp_directory_path() / "keyloft-benchmark-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        directory_ = pattern;
        for (std::int64_t i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            bookmarks_.push_back({.title = "A page's title, as long as most: " + number,
                                  .url = ::url("https://www.host" + std::to_string(i % 1000) +
                                               ".test/articles/2026/" + number + "?ref=bar")});
        }
        FileManager::defaultManager().writeAtomically(Bookmark::encode(bookmarks_), path());
    }
    BookmarksFile(const BookmarksFile&) = delete;
    BookmarksFile& operator=(const BookmarksFile&) = delete;
    ~BookmarksFile() {
        std::error_code ignored;
        fs::remove_all(directory_, ignored);
    }

    std::string path() const { return (directory_ / "bookmarks.json").string(); }
    URL url() const { return URL::fromFilePath(path(), false); }
    const std::vector<Bookmark>& bookmarks() const { return bookmarks_; }
    std::string text() const { return FileManager::defaultManager().contents(path()); }

private:
    fs::path directory_;
    std::vector<Bookmark> bookmarks_;
};

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
}

void load(benchmark::State& state) {
    const BookmarksFile file(state.range(0));
    while (state.KeepRunning()) {
        const BookmarkStore store(file.url());
        benchmark::DoNotOptimize(store.bookmarks().data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text().size()));
}
BENCHMARK(load)->Apply(sizes);

/// The baseline for `load`: reads the file without parsing it.
void loadFloor(benchmark::State& state) {
    const BookmarksFile file(state.range(0));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(FileManager::defaultManager().contents(file.path()));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text().size()));
}
BENCHMARK(loadFloor)->Apply(sizes);

void save(benchmark::State& state) {
    const BookmarksFile file(state.range(0));
    BookmarkStore store(file.url());
    const URL absent = url("https://absent.test/");
    while (state.KeepRunning()) {
        store.remove(absent);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text().size()));
}
BENCHMARK(save)->Apply(sizes)->UseRealTime();

/// The baseline for `save`: writes the encoded bookmarks atomically.
void saveFloor(benchmark::State& state) {
    const BookmarksFile file(state.range(0));
    const std::string text = file.text();
    while (state.KeepRunning()) {
        FileManager::defaultManager().writeAtomically(text, file.path());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(saveFloor)->Apply(sizes)->UseRealTime();

void decode(benchmark::State& state) {
    const std::string text = BookmarksFile(state.range(0)).text();
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(Bookmark::decode(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(decode)->Apply(sizes);

/// Parses the same JSON into generic values, for comparison with `decode`.
void decodeAsValues(benchmark::State& state) {
    const std::string text = BookmarksFile(state.range(0)).text();
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(Platform::JSONValue::parse(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(decodeAsValues)->Apply(sizes);

void encode(benchmark::State& state) {
    const BookmarksFile file(state.range(0));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(Bookmark::encode(file.bookmarks()));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text().size()));
}
BENCHMARK(encode)->Apply(sizes);

void contains(benchmark::State& state) {
    const BookmarksFile file(state.range(0));
    const BookmarkStore store(file.url());
    std::size_t next = 0;
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(store.contains(file.bookmarks()[next].url));
        next = (next + 7919) % file.bookmarks().size();
    }
}
BENCHMARK(contains)->Arg(10)->Arg(1'000)->Arg(100'000);

} // namespace
