#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace Platform {

/// A JSON value, with value semantics. Strings are UTF-8 and may contain NUL.
class JSONValue {
public:
    /// Elements in the order of the text.
    using Array = std::vector<JSONValue>;
    /// Members, sorted by the bytes of their names. If a name occurs more than once, its last value is used.
    using Object = std::map<std::string, JSONValue, std::less<>>;

    /// The deepest nesting of arrays and objects that `parse` accepts.
    static constexpr std::size_t maxDepth = 512;

    /// Creates a value of the argument's kind, or null without an argument.
    JSONValue() = default;
    JSONValue(std::nullptr_t) {}
    JSONValue(bool value)
        : value_(value) {}
    JSONValue(double value)
        : value_(value) {}
    JSONValue(int value)
        : value_(static_cast<double>(value)) {}
    JSONValue(std::string value)
        : value_(std::make_shared<const std::string>(std::move(value))) {}
    JSONValue(std::string_view value)
        : JSONValue(std::string(value)) {}
    JSONValue(const char* value)
        : JSONValue(std::string(value)) {}
    JSONValue(Array value)
        : value_(std::make_shared<const Array>(std::move(value))) {}
    JSONValue(Object value)
        : value_(std::make_shared<const Object>(std::move(value))) {}

    /// Parses an array or object in UTF-8. Returns nothing on an error. Strict (RFC 8259), except that a
    /// leading byte order mark is skipped; also rejects nesting deeper than `maxDepth` and numbers outside
    /// the range of a double. Safe for any input of any size, because it does not recurse deeply.
    static std::optional<JSONValue> parse(std::string_view bytes);

    /// Returns true for null.
    bool isNull() const { return std::holds_alternative<std::nullptr_t>(value_); }
    /// Returns the value if it is of that kind, otherwise null.
    const bool* boolean() const { return std::get_if<bool>(&value_); }
    const double* number() const { return std::get_if<double>(&value_); }
    const std::string* string() const { return shared<std::string>(); }
    const Array* array() const { return shared<Array>(); }
    const Object* object() const { return shared<Object>(); }

    /// Returns an object's member, or null if this is not an object or has no member of that name.
    const JSONValue* member(std::string_view name) const;
    /// Returns an object's string member, or null if there is no such member or it is not a string.
    const std::string* stringMember(std::string_view name) const;

    /// Compares contents.
    friend bool operator==(const JSONValue& left, const JSONValue& right);

private:
    template <typename Contents>
    const Contents* shared() const {
        const auto* pointer = std::get_if<std::shared_ptr<const Contents>>(&value_);
        return pointer == nullptr ? nullptr : pointer->get();
    }

    /// Strings, arrays and objects are immutable, so that copies share them. A value is therefore small,
    /// which limits the memory for long arrays of numbers.
    std::variant<std::nullptr_t, bool, double, std::shared_ptr<const std::string>,
                 std::shared_ptr<const Array>, std::shared_ptr<const Object>>
        value_ = nullptr;
};

/// How "/" is written in strings.
enum class JSONSlashes {
    plain,   ///< "/"
    escaped, ///< "\/"
};

/// `value` without any whitespace, members sorted by name.
std::string compactJSON(const JSONValue& value, JSONSlashes slashes);

/// `value` over several lines with two spaces of indentation and " : " between name and value, members sorted
/// by name, "/" written "\/", no line break at the end.
std::string prettyJSON(const JSONValue& value);

/// `text` as a string literal with its quotation marks, "/" written "\/"; non-ASCII characters stay as they
/// are.
std::string jsonStringLiteral(std::string_view text);

} // namespace Platform
