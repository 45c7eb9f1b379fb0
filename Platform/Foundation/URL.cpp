#include "Platform/Foundation/URL.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/URLEncoding.h"
#include "Platform/Foundation/URLHost.h"

#include <utility>

namespace Platform {

namespace {

/// Returns `path` without trailing slashes. The root "/" remains unchanged.
std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return path;
}

// Keeps offsets within 32 bits, even though percent-encoding can triple the length of a string.
constexpr std::size_t maxTextLength = std::size_t{1} << 28U;

/// Parses a string that is composed of valid components. Aborts if it is not a valid URL.
URL builtFrom(std::string_view text) {
    auto url = URL::fromString(text);
    if (!url) {
        fatalError("a URL composed of valid components does not parse: " + std::string(text));
    }
    return *std::move(url);
}

} // namespace

std::optional<URL> URL::fromString(std::string_view text) {
    if (text.empty() || text.size() > maxTextLength) {
        return std::nullopt;
    }
    URLEncoding::Parsed parsed;
    if (!URLEncoding::parse(text, true, parsed)) {
        return std::nullopt;
    }
    const char* base = parsed.text.data();
    const auto extent = [base](std::optional<std::string_view> part) {
        return part ? Extent{.begin = static_cast<std::uint32_t>(part->data() - base),
                             .length = static_cast<std::uint32_t>(part->size())}
                    : Extent{};
    };
    URL url;
    url.scheme_ = extent(parsed.parts.scheme);
    url.user_ = extent(parsed.parts.user);
    url.password_ = extent(parsed.parts.password);
    url.host_ = extent(parsed.parts.host);
    url.path_ = extent(parsed.parts.path);
    url.query_ = extent(parsed.parts.query);
    url.fragment_ = extent(parsed.parts.fragment);
    url.port_ = parsed.port;
    url.text_ = std::move(parsed.text);
    return url;
}

URL URL::fromFilePath(std::string_view path, bool isDirectory) {
    path = path.substr(0, path.find('\0'));
    std::string text = path.starts_with('/') ? "file://" : "";
    text += path.empty() ? "./" : URLEncoding::encodedPath(path);
    if (isDirectory && !text.ends_with('/')) {
        text += '/';
    }
    return builtFrom(text);
}

std::optional<std::string_view> URL::optionalView(Extent extent) const {
    return extent.isPresent() ? std::optional(view(extent)) : std::nullopt;
}

std::string_view URL::view(Extent extent) const {
    return extent.isPresent() ? std::string_view(text_).substr(extent.begin, extent.length)
                              : std::string_view();
}

std::optional<std::string_view> URL::scheme() const& { return optionalView(scheme_); }

std::optional<std::string> URL::host() const {
    const auto host = optionalView(host_);
    if (!host || (host->empty() && !user_.isPresent() && !port_)) {
        return std::nullopt;
    }
    if (URLEncoding::isIPLiteral(*host)) {
        return URLEncoding::decoded(host->substr(1, host->size() - 2));
    }
    return URLEncoding::decoded(*host);
}

std::optional<std::int64_t> URL::port() const { return port_; }

std::string URL::path() const {
    // Foundation skips one leading byte order mark when it decodes a path.
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string path = URLEncoding::decoded(view(path_)).value_or(std::string());
    if (path.starts_with(byteOrderMark)) {
        path.erase(0, byteOrderMark.size());
    }
    return path;
}

std::optional<std::string_view> URL::query() const& { return optionalView(query_); }
std::optional<std::string_view> URL::fragment() const& { return optionalView(fragment_); }

std::optional<std::string> URL::user() const {
    const auto user = optionalView(user_);
    return user ? URLEncoding::decoded(*user) : std::nullopt;
}

std::optional<std::string> URL::password() const {
    const auto password = optionalView(password_);
    return password ? std::optional<std::string>(*password) : std::nullopt;
}

std::optional<std::string_view> URL::percentEncodedUser() const& { return optionalView(user_); }
std::optional<std::string_view> URL::percentEncodedHost() const& { return optionalView(host_); }
std::string_view URL::percentEncodedPath() const& { return view(path_); }

URL URL::replacingPath(std::string_view percentEncodedPath) const {
    std::string text = text_.substr(0, path_.begin);
    text += percentEncodedPath;
    text += std::string_view(text_).substr(path_.begin + path_.length);
    return builtFrom(text);
}

URL URL::appendingPathComponent(std::string_view component, bool isDirectory) const {
    while (component.starts_with('/')) {
        component.remove_prefix(1);
    }
    if (component.empty()) {
        return *this;
    }
    std::string path(view(path_));
    if (!path.ends_with('/') && (!path.empty() || host_.isPresent())) {
        path += '/';
    }
    path += path.empty() ? URLEncoding::encodedPath(component)
                         : URLEncoding::encoded(component, URLEncoding::Allowed::path);
    path.resize(withoutTrailingSlashes(path).size());
    if (isDirectory && !path.ends_with('/')) {
        path += '/';
    }
    return replacingPath(path);
}

URL URL::deletingLastPathComponent() const {
    const std::string_view path = withoutTrailingSlashes(view(path_));
    if (path.empty() || path == "/") {
        return *this;
    }
    const std::size_t slash = path.rfind('/');
    return replacingPath(slash == std::string_view::npos ? "./" : path.substr(0, slash + 1));
}

std::string URL::filePath() const { return URLEncoding::decodedBytes(withoutTrailingSlashes(view(path_))); }

} // namespace Platform
