#pragma once

#include "Platform/Foundation/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// One "name=value" item of a query. An item without "=" has no value, one that ends in "=" has an empty
/// value.
struct URLQueryItem {
    /// Percent-encoded or not, depending on the function that returns or takes the item.
    std::string name;
    std::optional<std::string> value;

    friend bool operator==(const URLQueryItem&, const URLQueryItem&) = default;
};

/// Reads the parts of a URL and changes its query and fragment, as Foundation's NSURLComponents does.
///
/// Parts are stored percent-encoded. Getters without "percentEncoded" in their name decode; they return
/// nothing (`path` an empty text) if the bytes are not UTF-8 or the host is not valid in IDNA. Setters
/// without it encode.
class URLComponents {
public:
    /// The parts of `url` (not resolved against any base).
    explicit URLComponents(const URL& url);
    /// Parses `text`. Returns nothing if it is not a valid URL. Unlike a URL, it may be empty.
    static std::optional<URLComponents> fromString(std::string_view text);

    /// The parts of the text. Absent is not the same as empty.
    const std::optional<std::string>& scheme() const { return scheme_; }
    std::optional<std::string> user() const;
    std::optional<std::string> password() const;
    std::optional<std::string> host() const;
    const std::optional<std::string>& percentEncodedHost() const { return host_; }
    std::optional<std::int64_t> port() const { return port_; }
    std::string path() const;
    const std::string& percentEncodedPath() const { return path_; }
    std::optional<std::string> query() const;
    const std::optional<std::string>& percentEncodedQuery() const { return query_; }
    std::optional<std::string> fragment() const;
    const std::optional<std::string>& percentEncodedFragment() const { return fragment_; }

    /// Splits the query at "&" and each item at its first "=", and decodes the parts; "+" remains a plus
    /// sign. A name that does not decode to UTF-8 is empty, and such a value is absent. Returns nothing
    /// without a query, and an empty list for an empty query.
    std::optional<std::vector<URLQueryItem>> queryItems() const;
    /// The same, percent-encoded as stored.
    std::optional<std::vector<URLQueryItem>> percentEncodedQueryItems() const;

    /// Sets a query that is already encoded. If any part of it is not valid, encodes all of it.
    void setPercentEncodedQuery(std::string_view query);
    /// Sets items that are not encoded. Encodes "&", "=" and characters that a query may not contain, so that
    /// the items are read back unchanged; "+", "?", ";" and "/" stay literal. An empty list sets an empty
    /// query.
    void setQueryItems(const std::vector<URLQueryItem>& items);
    /// Sets items that are already encoded. Encodes each name and value that is not valid.
    void setPercentEncodedQueryItems(const std::vector<URLQueryItem>& items);
    void setFragment(std::string_view fragment);

    /// The text of all parts.
    std::string string() const;
    /// The URL of that text, or nothing if the text is empty, too long, or begins with ":".
    std::optional<URL> url() const;

    /// Equality of the parts.
    friend bool operator==(const URLComponents& left, const URLComponents& right);

private:
    URLComponents() = default;

    void changed() { text_.reset(); }

    std::optional<std::string> scheme_;
    std::optional<std::string> user_;
    std::optional<std::string> password_;
    std::optional<std::string> host_;
    std::optional<std::int64_t> port_;
    std::string path_;
    std::optional<std::string> query_;
    std::optional<std::string> fragment_;
    /// The parsed text, until a part is changed. It may spell the port differently, for example with leading
    /// zeros.
    std::optional<std::string> text_;
};

} // namespace Platform
