#include "Platform/Foundation/URL.h"

#include "Platform/Foundation/URLEncoding.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Platform {

namespace {

/// `path` without trailing slashes, except that of the root.
std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return path;
}

} // namespace

std::optional<URL> URL::fromString(std::string_view text) {
    // Escapes make a text three times as long at most; offsets are 32 bits wide.
    if (text.empty() || text.size() > std::numeric_limits<std::uint32_t>::max() / 16) {
        return std::nullopt;
    }
    URLEncoding::Parsed parsed;
    if (!URLEncoding::parse(text, true, parsed)) {
        return std::nullopt;
    }
    const char* base = parsed.text.data();
    const auto extent = [base](std::optional<std::string_view> part) {
        return part ? Extent{.begin = static_cast<std::uint32_t>(part->data() - base),
                             .length = static_cast<std::uint32_t>(part->size()),
                             .present = true}
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
    text += URLEncoding::encodedPath(path);
    if (isDirectory && !text.ends_with('/')) {
        text += '/';
    }
    return fromString(text).value_or(URL());
}

std::optional<std::string_view> URL::optionalView(Extent extent) const {
    return extent.present ? std::optional(view(extent)) : std::nullopt;
}

std::string_view URL::view(Extent extent) const {
    return std::string_view(text_).substr(extent.begin, extent.length);
}

std::optional<std::string_view> URL::scheme() const& { return optionalView(scheme_); }

std::optional<std::string> URL::host() const {
    const auto host = optionalView(host_);
    if (!host || (host->empty() && !user_.present && !port_)) {
        return std::nullopt;
    }
    if (URLEncoding::isIPLiteral(*host)) {
        return URLEncoding::decoded(host->substr(1, host->size() - 2));
    }
    return URLEncoding::decoded(*host);
}

std::optional<std::int64_t> URL::port() const { return port_; }

std::string URL::path() const { return URLEncoding::decoded(view(path_)).value_or(std::string()); }

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

std::optional<std::string_view> URL::percentEncodedPassword() const& { return optionalView(password_); }

std::optional<std::string_view> URL::percentEncodedHost() const& { return optionalView(host_); }

std::string_view URL::percentEncodedPath() const& { return view(path_); }

URL URL::replacingPath(std::string_view percentEncodedPath) const {
    std::string text = text_.substr(0, path_.begin);
    text += percentEncodedPath;
    text += std::string_view(text_).substr(path_.begin + path_.length);
    return fromString(text).value_or(*this);
}

URL URL::appendingPathComponent(std::string_view component, bool isDirectory) const {
    std::string path(view(path_));
    while (component.starts_with('/')) {
        component.remove_prefix(1);
    }
    if (!path.ends_with('/') && (!path.empty() || host_.present)) {
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

std::string URL::lastPathComponent() const {
    const std::string_view path = withoutTrailingSlashes(view(path_));
    if (path == "/") {
        return "/";
    }
    const std::size_t slash = path.rfind('/');
    return URLEncoding::decoded(slash == std::string_view::npos ? path : path.substr(slash + 1))
        .value_or(std::string());
}

std::string URL::filePath() const {
    return URLEncoding::decoded(withoutTrailingSlashes(view(path_))).value_or(std::string());
}

bool URL::isFileURL() const {
    return std::ranges::equal(view(scheme_), std::string_view("file"), [](char left, char right) {
        return (left >= 'A' && left <= 'Z' ? static_cast<char>(left - 'A' + 'a') : left) == right;
    });
}

} // namespace Platform
