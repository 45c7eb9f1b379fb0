#include "Platform/Foundation/URLComponents.h"

#include "Platform/Foundation/URLEncoding.h"
#include "Platform/Foundation/URLHost.h"

#include <tuple>
#include <utility>

namespace Platform {

using URLEncoding::Allowed;

namespace {

std::optional<std::string> decodedPart(const std::optional<std::string>& part) {
    return part ? URLEncoding::decoded(*part) : std::nullopt;
}

std::optional<std::string> copied(std::optional<std::string_view> part) {
    return part ? std::optional<std::string>(*part) : std::nullopt;
}

template <typename Encode>
std::string joined(const std::vector<URLQueryItem>& items, Encode encode) {
    std::string query;
    bool first = true;
    for (const URLQueryItem& item : items) {
        if (!first) {
            query += '&';
        }
        first = false;
        query += encode(item.name, true);
        if (item.value) {
            query += '=';
            query += encode(*item.value, false);
        }
    }
    return query;
}

} // namespace

URLComponents::URLComponents(const URL& url) {
    if (auto parsed = fromString(url.absoluteString())) {
        *this = *std::move(parsed);
    }
}

std::optional<URLComponents> URLComponents::fromString(std::string_view text) {
    URLEncoding::Parsed parsed;
    if (!URLEncoding::parse(text, false, parsed)) {
        return std::nullopt;
    }
    URLComponents components;
    components.scheme_ = copied(parsed.parts.scheme);
    components.user_ = copied(parsed.parts.user);
    components.password_ = copied(parsed.parts.password);
    components.host_ = copied(parsed.parts.host);
    components.port_ = parsed.port;
    components.path_ = parsed.parts.path;
    components.query_ = copied(parsed.parts.query);
    components.fragment_ = copied(parsed.parts.fragment);
    components.text_ = std::move(parsed.text);
    return components;
}

std::optional<std::string> URLComponents::user() const { return decodedPart(user_); }
std::optional<std::string> URLComponents::password() const { return decodedPart(password_); }

std::optional<std::string> URLComponents::host() const {
    return host_ ? URLEncoding::decodedHost(*host_) : std::nullopt;
}

std::string URLComponents::path() const { return URLEncoding::decoded(path_).value_or(std::string()); }
std::optional<std::string> URLComponents::query() const { return decodedPart(query_); }
std::optional<std::string> URLComponents::fragment() const { return decodedPart(fragment_); }

std::optional<std::vector<URLQueryItem>> URLComponents::percentEncodedQueryItems() const {
    if (!query_) {
        return std::nullopt;
    }
    std::vector<URLQueryItem> items;
    std::string_view rest = *query_;
    while (!query_->empty()) {
        const std::size_t ampersand = rest.find('&');
        const std::string_view piece = rest.substr(0, ampersand);
        const std::size_t equals = piece.find('=');
        URLQueryItem item{.name = std::string(piece.substr(0, equals)), .value = std::nullopt};
        if (equals != std::string_view::npos) {
            item.value = std::string(piece.substr(equals + 1));
        }
        items.push_back(std::move(item));
        if (ampersand == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(ampersand + 1);
    }
    return items;
}

std::optional<std::vector<URLQueryItem>> URLComponents::queryItems() const {
    auto items = percentEncodedQueryItems();
    if (items) {
        for (URLQueryItem& item : *items) {
            item.name = URLEncoding::decoded(item.name).value_or(std::string());
            if (item.value) {
                item.value = URLEncoding::decoded(*item.value);
            }
        }
    }
    return items;
}

void URLComponents::setPercentEncodedQuery(std::string_view query) {
    changed();
    query_ = URLEncoding::encodedUnlessValid(query, Allowed::query);
}

void URLComponents::setQueryItems(const std::vector<URLQueryItem>& items) {
    changed();
    query_ = joined(items, [](std::string_view text, bool /*isName*/) {
        return URLEncoding::encoded(text, Allowed::queryItem);
    });
}

void URLComponents::setPercentEncodedQueryItems(const std::vector<URLQueryItem>& items) {
    changed();
    query_ = joined(items, [](std::string_view text, bool isName) {
        // A value may contain "=": only the first one in an item is a separator.
        const bool kept = URLEncoding::isValid(text, Allowed::query) &&
                          text.find_first_of(isName ? "&=" : "&") == std::string_view::npos;
        return kept ? std::string(text) : URLEncoding::encoded(text, Allowed::queryItem);
    });
}

void URLComponents::setFragment(std::string_view fragment) {
    changed();
    fragment_ = URLEncoding::encoded(fragment, Allowed::query);
}

std::string URLComponents::string() const {
    if (text_) {
        return *text_;
    }
    std::string text;
    if (scheme_) {
        text += *scheme_;
        text += ':';
    }
    if (host_) {
        text += "//";
        if (user_) {
            text += *user_;
            if (password_) {
                text += ':';
                text += *password_;
            }
            text += '@';
        }
        text += *host_;
        if (port_) {
            text += ':';
            text += std::to_string(*port_);
        }
    }
    text += path_;
    if (query_) {
        text += '?';
        text += *query_;
    }
    if (fragment_) {
        text += '#';
        text += *fragment_;
    }
    return text;
}

std::optional<URL> URLComponents::url() const { return URL::fromString(string()); }

bool operator==(const URLComponents& left, const URLComponents& right) {
    const auto parts = [](const URLComponents& components) {
        return std::tie(components.scheme_, components.user_, components.password_, components.host_,
                        components.port_, components.path_, components.query_, components.fragment_);
    };
    return parts(left) == parts(right);
}

} // namespace Platform
