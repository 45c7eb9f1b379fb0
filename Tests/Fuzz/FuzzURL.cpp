#include "Platform/Foundation/URL.h"
#include "Platform/Foundation/URLComponents.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Platform::URL;
using Platform::URLComponents;

[[noreturn]] void fail(std::string_view promise, std::string_view text) {
    std::cerr << "broken: " << promise << "\n  " << text << '\n';
    std::abort();
}

/// If `holds` is false, prints `promise` and `text` and aborts.
void require(bool holds, std::string_view promise, std::string_view text) {
    if (!holds) {
        fail(promise, text);
    }
}

/// Returns the contained value. If `value` is empty, prints `promise` and `text` and aborts.
template <typename Value>
Value required(std::optional<Value> value, std::string_view promise, std::string_view text) {
    if (!value) {
        fail(promise, text);
    }
    return *std::move(value);
}

bool sameParts(const URL& left, const URL& right) {
    return left.scheme() == right.scheme() && left.user() == right.user() &&
           left.password() == right.password() && left.host() == right.host() &&
           left.percentEncodedHost() == right.percentEncodedHost() && left.port() == right.port() &&
           left.path() == right.path() && left.percentEncodedPath() == right.percentEncodedPath() &&
           left.query() == right.query() && left.fragment() == right.fragment();
}

void checkURL(const URL& url) {
    const std::string& text = url.absoluteString();
    for (const char character : text) {
        require(character > ' ' && character < '\x7F', "a URL is printable ASCII", text);
    }
    const URL again = required(URL::fromString(text), "a URL's text is a URL", text);
    require(again == url && sameParts(again, url), "a URL's text is that URL", text);

    const URL shorter = url.deletingLastPathComponent();
    const URL longer = url.appendingPathComponent("a:b/c d?", true);
    for (const URL* other : {&shorter, &longer}) {
        require(other->scheme() == url.scheme() && other->host() == url.host() &&
                    other->port() == url.port() && other->query() == url.query() &&
                    other->fragment() == url.fragment(),
                "another path changes nothing else", text);
    }
    require(longer.percentEncodedPath().ends_with("/c%20d%3F/"), "an appended component is the last", text);
}

void checkComponents(URLComponents components, std::string_view text) {
    const bool isURL = components.url().has_value();
    require(URLComponents::fromString(components.string()) == components,
            "components round-trip through their text", text);

    const auto query = components.percentEncodedQuery();
    require(components.queryItems().has_value() == query.has_value(),
            "items exist if and only if there is a query", text);
    if (query) {
        const auto encodedItems = required(components.percentEncodedQueryItems(), "there are items", text);
        components.setPercentEncodedQueryItems(encodedItems);
        require(components.percentEncodedQuery() == query, "encoded items make the same query again", text);
        const auto items = required(components.queryItems(), "there are items", text);
        components.setQueryItems(items);
        // A single item with neither name nor value is written as an empty query, which is parsed as no
        // items.
        const std::size_t count = items == std::vector<Platform::URLQueryItem>{{}} ? 0 : items.size();
        require(required(components.queryItems(), "there are items", text).size() == count,
                "decoded items are as many again", text);
        components.setPercentEncodedQuery(*query);
    }
    components.setFragment("f");
    const std::string changed = components.string();
    const auto url = URL::fromString(changed);
    require(url || !isURL, "a URL with a changed fragment is a URL", changed);
    if (url) {
        require(url->fragment() == "f", "a changed fragment is in the text", changed);
        require(URLComponents(*url).percentEncodedHost() == components.percentEncodedHost(),
                "a changed fragment does not change the host", changed);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the fuzzer's bytes are text here
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto url = URL::fromString(text)) {
        checkURL(*url);
        checkComponents(URLComponents(*url), url->absoluteString());
    }
    if (const auto components = URLComponents::fromString(text)) {
        checkComponents(*components, text);
    }
    checkURL(URL::fromFilePath(text, size % 2 == 0));
    return 0;
}
