#include "KeyloftBrowserKit/Bookmark.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/JSONEvents.h"

#include <cstddef>
#include <utility>

namespace KeyloftBrowserKit {

namespace {

/// Builds the list while the text is read: as values, a large file would take many times its size.
class Decoder final : public Platform::JSONEvents {
public:
    bool beginArray() override {
        if (depth_ == inElement) {
            setMember(std::nullopt);
        }
        return ++depth_ != inElement;
    }

    bool endArray() override {
        --depth_;
        return true;
    }

    bool beginObject() override {
        if (depth_ == outside) {
            return false;
        }
        if (depth_ == inElement) {
            setMember(std::nullopt);
        }
        ++depth_;
        return true;
    }

    bool name(std::string& name) override {
        if (depth_ == inElement) {
            member_ = name == "title" ? &title_ : name == "url" ? &url_ : nullptr;
        }
        return true;
    }

    bool endObject() override {
        if (--depth_ != inList) {
            return true;
        }
        auto url = url_ ? Platform::URL::fromString(*url_) : std::nullopt;
        if (!title_ || !url) {
            return false;
        }
        bookmarks_.push_back({*std::move(title_), *std::move(url)});
        title_.reset();
        url_.reset();
        return true;
    }

    bool string(std::string& value) override {
        if (depth_ == inElement) {
            setMember(std::move(value));
        }
        return depth_ > inList;
    }

    bool otherValue() override {
        if (depth_ == inElement) {
            setMember(std::nullopt);
        }
        return depth_ > inList;
    }

    std::vector<Bookmark> take() { return std::move(bookmarks_); }

private:
    enum Depth : std::size_t { outside, inList, inElement };

    /// The last value of a name told twice counts.
    void setMember(std::optional<std::string> value) {
        if (member_ != nullptr) {
            *member_ = std::move(value);
        }
    }

    std::size_t depth_ = outside;
    std::optional<std::string> title_;
    std::optional<std::string> url_;
    /// Where the value after the present name belongs; null where nobody asks for it.
    std::optional<std::string>* member_ = nullptr;
    std::vector<Bookmark> bookmarks_;
};

} // namespace

std::optional<std::vector<Bookmark>> Bookmark::decode(std::string_view json) {
    Decoder decoder;
    if (!Platform::readJSON(json, decoder)) {
        return std::nullopt;
    }
    return decoder.take();
}

std::string Bookmark::encode(std::span<const Bookmark> bookmarks) {
    static constexpr std::string_view opening = "\n  {\n    \"title\" : ";
    static constexpr std::string_view middle = ",\n    \"url\" : ";
    static constexpr std::string_view closing = "\n  },";

    // Room for the usual: a few slashes and quotation marks to escape.
    static constexpr std::size_t allowance = 16;
    std::size_t size = 4;
    for (const Bookmark& bookmark : bookmarks) {
        size += opening.size() + bookmark.title.size() + middle.size() +
                bookmark.url.absoluteString().size() + closing.size() + allowance;
    }
    std::string json;
    json.reserve(size);

    json += '[';
    for (const Bookmark& bookmark : bookmarks) {
        json += opening;
        // An ill-formed title would make the file unreadable, and so cost the whole list.
        if (Platform::isValidUTF8(bookmark.title)) {
            Platform::appendJSONStringLiteral(json, bookmark.title);
        } else {
            Platform::appendJSONStringLiteral(json, Platform::repairingUTF8(bookmark.title));
        }
        json += middle;
        Platform::appendJSONStringLiteral(json, bookmark.url.absoluteString());
        json += closing;
    }
    if (bookmarks.empty()) {
        json += '\n';
    } else {
        json.pop_back();
    }
    json += "\n]";
    return json;
}

} // namespace KeyloftBrowserKit
