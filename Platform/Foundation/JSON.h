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
    /// The elements of an array, in document order.
    using Array = std::vector<JSONValue>;
    /// The members of an object, sorted bytewise by name. If a name is repeated, its last value is used.
    using Object = std::map<std::string, JSONValue, std::less<>>;

    /// The deepest nesting of arrays and objects that `parse` accepts.
    static constexpr std::size_t maxDepth = 512;

    /// Creates a value of the JSON type that corresponds to the argument. Without an argument, creates null.
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

    /// Parses a JSON array or object in UTF-8. Returns nothing on error. Conforms strictly to RFC 8259,
    /// except that a leading byte order mark is skipped. Also rejects nesting deeper than `maxDepth` and
    /// numbers outside the range of a double. Safe for untrusted input of any size.
    static std::optional<JSONValue> parse(std::string_view bytes);

    /// Returns true if the value is null.
    bool isNull() const { return std::holds_alternative<std::nullptr_t>(value_); }
    /// Each accessor returns a pointer to the contents if the value has the named type, otherwise null.
    const bool* boolean() const { return std::get_if<bool>(&value_); }
    const double* number() const { return std::get_if<double>(&value_); }
    const std::string* string() const { return shared<std::string>(); }
    const Array* array() const { return shared<Array>(); }
    const Object* object() const { return shared<Object>(); }

    /// Returns the member with the given name, or null if this value is not an object or has no such member.
    const JSONValue* member(std::string_view name) const;
    /// Returns the string member with the given name, or null if the member is missing or not a string.
    const std::string* stringMember(std::string_view name) const;

    /// Compares the contents, including nested values.
    friend bool operator==(const JSONValue& left, const JSONValue& right);

private:
    template <typename Contents>
    const Contents* shared() const {
        const auto* pointer = std::get_if<std::shared_ptr<const Contents>>(&value_);
        return pointer == nullptr ? nullptr : pointer->get();
    }

    /// Strings, arrays and objects are immutable and shared between copies, which also keeps a value small.
    std::variant<std::nullptr_t, bool, double, std::shared_ptr<const std::string>,
                 std::shared_ptr<const Array>, std::shared_ptr<const Object>>
        value_ = nullptr;
};

/// Determines how "/" is written in strings.
enum class JSONSlashes {
    plain,   ///< "/"
    escaped, ///< "\/"
};

/// Serializes `value` without whitespace. Members are sorted by name.
std::string compactJSON(const JSONValue& value, JSONSlashes slashes);

/// Serializes `value` on several lines, with an indentation of two spaces and " : " between name and value.
/// Members are sorted by name, "/" is written as "\/", and the result does not end in a line break.
std::string prettyJSON(const JSONValue& value);

/// Returns `text` as a JSON string literal with quotation marks. Escapes "/", but not non-ASCII characters.
std::string jsonStringLiteral(std::string_view text);

} // namespace Platform
