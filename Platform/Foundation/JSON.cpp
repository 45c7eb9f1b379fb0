#include "Platform/Foundation/JSON.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <utility>

namespace Platform {

namespace {

/// Builds a JSONValue from the events of nlohmann/json's SAX parser, which does not recurse.
class Builder {
public:
    using number_integer_t = nlohmann::json::number_integer_t;
    using number_unsigned_t = nlohmann::json::number_unsigned_t;
    using number_float_t = nlohmann::json::number_float_t;
    using string_t = nlohmann::json::string_t;
    using binary_t = nlohmann::json::binary_t;

    bool null() { return add(nullptr); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(number_integer_t value) { return add(static_cast<double>(value)); }
    bool number_unsigned(number_unsigned_t value) { return add(static_cast<double>(value)); }
    bool number_float(number_float_t value, const string_t& /*text*/) {
        return std::isfinite(value) && add(value);
    }
    bool string(string_t& value) { return add(std::move(value)); }
    static bool binary(binary_t& /*value*/) { return false; }

    bool start_object(std::size_t /*count*/) { return open(true); }
    bool start_array(std::size_t /*count*/) { return open(false); }
    bool key(string_t& name) {
        open_.back().name = std::move(name);
        return true;
    }
    bool end_object() { return close(); }
    bool end_array() { return close(); }

    static bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                            const nlohmann::json::exception& /*error*/) {
        return false;
    }

    JSONValue take() { return std::move(top_); }

private:
    /// An array or object that is not closed yet, and the name of its next member.
    struct Open {
        bool isObject = false;
        JSONValue::Array array;
        JSONValue::Object object;
        std::string name;
    };

    bool add(JSONValue value) {
        if (open_.empty()) {
            top_ = std::move(value);
            return true;
        }
        Open& parent = open_.back();
        if (parent.isObject) {
            parent.object.insert_or_assign(std::move(parent.name), std::move(value));
        } else {
            parent.array.push_back(std::move(value));
        }
        return true;
    }

    bool open(bool isObject) {
        if (open_.size() == JSONValue::maxDepth) {
            return false;
        }
        open_.emplace_back().isObject = isObject;
        return true;
    }

    bool close() {
        Open closed = std::move(open_.back());
        open_.pop_back();
        return add(closed.isObject ? JSONValue(std::move(closed.object))
                                   : JSONValue(std::move(closed.array)));
    }

    std::vector<Open> open_;
    JSONValue top_;
};

bool isWrittenAsItIs(char character, JSONSlashes slashes) {
    return static_cast<unsigned char>(character) >= 0x20 && character != '"' && character != '\\' &&
           (character != '/' || slashes == JSONSlashes::plain);
}

void appendEscape(std::string& out, char character) {
    constexpr std::string_view hexDigits = "0123456789abcdef";
    out += '\\';
    switch (character) {
    case '\b':
        out += 'b';
        break;
    case '\f':
        out += 'f';
        break;
    case '\n':
        out += 'n';
        break;
    case '\r':
        out += 'r';
        break;
    case '\t':
        out += 't';
        break;
    default:
        if (const auto byte = static_cast<unsigned char>(character); byte < 0x20) {
            out += "u00";
            out += hexDigits[byte >> 4U];
            out += hexDigits[byte & 0xFU];
        } else {
            out += character;
        }
    }
}

void appendLiteral(std::string& out, std::string_view text, JSONSlashes slashes) {
    out += '"';
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isWrittenAsItIs(text[i], slashes)) {
            out += text.substr(written, i - written);
            appendEscape(out, text[i]);
            written = i + 1;
        }
    }
    out += text.substr(written);
    out += '"';
}

std::string numberText(double value) {
    // 2^53. A double cannot represent every larger integer, so use scientific notation for larger numbers.
    constexpr double exactIntegers = 9007199254740992.0;
    if (std::trunc(value) == value && std::abs(value) <= exactIntegers) {
        return std::to_string(static_cast<std::int64_t>(value));
    }
    // With libc++, std::to_chars for doubles requires macOS 13.3, but the program supports macOS 13.0.
    return nlohmann::json(value).dump();
}

class Writer {
public:
    Writer(bool pretty, JSONSlashes slashes)
        : pretty_(pretty)
        , slashes_(slashes) {}

    void write(const JSONValue& value) {
        if (const bool* boolean = value.boolean()) {
            out_ += *boolean ? "true" : "false";
        } else if (const double* number = value.number()) {
            out_ += numberText(*number);
        } else if (const std::string* string = value.string()) {
            appendLiteral(out_, *string, slashes_);
        } else if (const JSONValue::Array* array = value.array()) {
            writeElements('[', ']', *array, [this](const JSONValue& element) { write(element); });
        } else if (const JSONValue::Object* object = value.object()) {
            writeElements('{', '}', *object, [this](const JSONValue::Object::value_type& member) {
                appendLiteral(out_, member.first, slashes_);
                out_ += pretty_ ? " : " : ":";
                write(member.second);
            });
        } else {
            out_ += "null";
        }
    }

    std::string take() { return std::move(out_); }

private:
    template <typename Container, typename WriteElement>
    void writeElements(char opening, char closing, const Container& container, WriteElement writeElement) {
        out_ += opening;
        ++depth_;
        bool first = true;
        for (const auto& element : container) {
            if (!first) {
                out_ += ',';
            }
            first = false;
            breakLine();
            writeElement(element);
        }
        // Like Foundation, write an empty container on three lines, the second of which is empty.
        if (pretty_ && first) {
            out_ += '\n';
        }
        --depth_;
        breakLine();
        out_ += closing;
    }

    void breakLine() {
        if (pretty_) {
            out_ += '\n';
            out_.append(2 * depth_, ' ');
        }
    }

    std::string out_;
    std::size_t depth_ = 0;
    bool pretty_;
    JSONSlashes slashes_;
};

} // namespace

std::optional<JSONValue> JSONValue::parse(std::string_view bytes) {
    // nlohmann/json 3.11.2 treats NUL as the end of the input
    // (https://github.com/nlohmann/json/issues/5530).
    if (bytes.contains('\0')) {
        return std::nullopt;
    }
    Builder builder;
    if (!nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &builder)) {
        return std::nullopt;
    }
    JSONValue top = builder.take();
    if (top.array() == nullptr && top.object() == nullptr) {
        return std::nullopt;
    }
    return top;
}

bool operator==(const JSONValue& left, const JSONValue& right) {
    const auto same = [](const auto* one, const auto* other) {
        return one != nullptr && other != nullptr && *one == *other;
    };
    return (left.isNull() && right.isNull()) || same(left.boolean(), right.boolean()) ||
           same(left.number(), right.number()) || same(left.string(), right.string()) ||
           same(left.array(), right.array()) || same(left.object(), right.object());
}

const JSONValue* JSONValue::member(std::string_view name) const {
    const Object* members = object();
    if (members == nullptr) {
        return nullptr;
    }
    const auto found = members->find(name);
    return found == members->end() ? nullptr : &found->second;
}

const std::string* JSONValue::stringMember(std::string_view name) const {
    const JSONValue* value = member(name);
    return value == nullptr ? nullptr : value->string();
}

std::string compactJSON(const JSONValue& value, JSONSlashes slashes) {
    Writer writer(false, slashes);
    writer.write(value);
    return writer.take();
}

std::string prettyJSON(const JSONValue& value) {
    Writer writer(true, JSONSlashes::escaped);
    writer.write(value);
    return writer.take();
}

std::string jsonStringLiteral(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 2);
    appendLiteral(out, text, JSONSlashes::escaped);
    return out;
}

} // namespace Platform
