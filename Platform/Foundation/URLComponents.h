#pragma once

#include "Platform/Foundation/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// A "name=value" item of a query. Without "=", the value is absent; with nothing after "=", it is empty.
struct URLQueryItem {
    /// Name and value are percent-encoded or not, depending on the function that returns or takes the item.
    std::string name;
    std::optional<std::string> value;

    friend bool operator==(const URLQueryItem&, const URLQueryItem&) = default;
};

/// Reads the parts of a URL and changes its query and fragment. Behaves like Foundation's NSURLComponents.
///
/// Parts are stored percent-encoded. Getters without "percentEncoded" in their name decode the part. If the
/// decoded bytes are not valid UTF-8 or the host is not valid in IDNA, they return nothing, or an empty
/// string for the path. Setters without "percentEncoded" in their name encode their argument.
class URLComponents {
public:
    /// Creates the components of `url`. A relative reference is not resolved against a base.
    explicit URLComponents(const URL& url);
    /// Parses `text`. Returns nothing if it is invalid. Unlike `URL::fromString`, accepts an empty string.
    static std::optional<URLComponents> fromString(std::string_view text);

    /// The parts of the URL. An absent part is distinct from an empty part.
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

    /// Splits the query at "&" and each item at its first "=", and decodes names and values. "+" is not
    /// decoded to a space. A name that does not decode to valid UTF-8 becomes empty, and such a value absent.
    /// Returns nothing if there is no query, and an empty list if the query is empty.
    std::optional<std::vector<URLQueryItem>> queryItems() const;
    /// Like `queryItems`, but names and values remain percent-encoded.
    std::optional<std::vector<URLQueryItem>> percentEncodedQueryItems() const;

    /// Sets a query that is already percent-encoded. If any part of it is invalid, encodes the whole query.
    void setPercentEncodedQuery(std::string_view query);
    /// Sets the query from items that are not percent-encoded. Encodes "&", "=" and characters that a query
    /// may not contain, but not "+", "?", ";" and "/". An empty list sets an empty query.
    void setQueryItems(const std::vector<URLQueryItem>& items);
    /// Sets the query from percent-encoded items. Encodes each name or value that is invalid.
    void setPercentEncodedQueryItems(const std::vector<URLQueryItem>& items);
    void setFragment(std::string_view fragment);

    /// The whole URL as a string.
    std::string string() const;
    /// Returns the URL for `string`, or nothing if the string is empty or too long.
    std::optional<URL> url() const;

    /// Compares the parts of the URLs.
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
    /// The parsed string, or nothing after a part has been changed. Preserves leading zeros of the port.
    std::optional<std::string> text_;
};

} // namespace Platform
