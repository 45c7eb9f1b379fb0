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

/// A JSON value, read or to be written. A plain value; strings are UTF-8 and may hold NUL.
class JSONValue {
public:
    /// In the order of the text.
    using Array = std::vector<JSONValue>;
    /// Sorted by name, in the order of the names' bytes. Of a name told twice the last value counts.
    using Object = std::map<std::string, JSONValue, std::less<>>;

    /// Deepest nesting of arrays and objects that `parse` takes.
    static constexpr std::size_t maxDepth = 512;

    /// A value of the argument's kind. Without an argument it is null.
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

    /// The array or object that `bytes` hold in UTF-8, or nothing. Strict (RFC 8259), except that a leading
    /// byte order mark is passed over; deeper nesting than `maxDepth` and numbers beyond a double are
    /// refused. Takes any input, of any size, without deep recursion.
    static std::optional<JSONValue> parse(std::string_view bytes);

    /// Returns true for null.
    bool isNull() const { return std::holds_alternative<std::nullptr_t>(value_); }
    /// The value where it is of that kind, else null.
    const bool* boolean() const { return std::get_if<bool>(&value_); }
    const double* number() const { return std::get_if<double>(&value_); }
    const std::string* string() const { return shared<std::string>(); }
    const Array* array() const { return shared<Array>(); }
    const Object* object() const { return shared<Object>(); }

    /// An object's member; null where this is no object or has none of that name.
    const JSONValue* member(std::string_view name) const;
    /// An object's member that is a string; null where there is none, or it is anything else.
    const std::string* stringMember(std::string_view name) const;

    /// Compares contents.
    friend bool operator==(const JSONValue& left, const JSONValue& right);

private:
    template <typename Contents>
    const Contents* shared() const {
        const auto* pointer = std::get_if<std::shared_ptr<const Contents>>(&value_);
        return pointer == nullptr ? nullptr : pointer->get();
    }

    /// What is larger than a pointer is shared between copies, which nobody can tell since it never changes;
    /// a long list of small numbers thus stays bearable.
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
