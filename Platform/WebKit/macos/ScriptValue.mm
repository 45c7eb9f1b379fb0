#include "Platform/WebKit/macos/ScriptValue.h"

#include "Platform/Foundation/macos/Conversions.h"

#include <cmath>
#include <optional>
#include <unordered_map>

namespace Platform {

namespace {

/// Pages may post whatever they like: lists in lists without end, a list in itself, and one list in a
/// thousand places. The latter is converted once, for written out it would not fit into memory.
class Conversion {
public:
    /// Nothing where the whole cannot be told.
    std::optional<JSONValue> convert(id value, std::size_t depth) {
        if ([value isKindOfClass:NSString.class]) {
            return fromNSString(value);
        }
        if ([value isKindOfClass:NSNumber.class]) {
            return number(value);
        }
        if ([value isKindOfClass:NSArray.class] || [value isKindOfClass:NSDictionary.class]) {
            return container(value, depth);
        }
        return nullptr;
    }

private:
    static JSONValue number(NSNumber* value) {
        if (CFGetTypeID((__bridge CFTypeRef)value) == CFBooleanGetTypeID()) {
            return static_cast<bool>(value.boolValue);
        }
        const double number = value.doubleValue;
        return std::isfinite(number) ? JSONValue(number) : JSONValue(nullptr);
    }

    std::optional<JSONValue> container(id value, std::size_t depth) {
        const void* const identity = (__bridge const void*)value;
        // As long as nothing is there the container is being converted, and contains itself.
        const auto [known, isNew] = converted_.try_emplace(identity, std::nullopt);
        if (!isNew) {
            return known->second;
        }
        if (depth == JSONValue::maxDepth) {
            return std::nullopt;
        }
        auto result =
            [value isKindOfClass:NSArray.class] ? array(value, depth + 1) : object(value, depth + 1);
        converted_[identity] = result;
        return result;
    }

    std::optional<JSONValue> array(NSArray<id>* values, std::size_t depth) {
        JSONValue::Array result;
        for (const id value in values) {
            auto element = convert(value, depth);
            if (!element) {
                return std::nullopt;
            }
            result.push_back(*std::move(element));
        }
        return result;
    }

    std::optional<JSONValue> object(NSDictionary<id, id>* values, std::size_t depth) {
        JSONValue::Object result;
        for (const id name in values) {
            auto member = convert(values[name], depth);
            if (!member) {
                return std::nullopt;
            }
            // A script's object has no names but texts.
            if ([name isKindOfClass:NSString.class]) {
                result.insert_or_assign(fromNSString(name), *std::move(member));
            }
        }
        return result;
    }

    std::unordered_map<const void*, std::optional<JSONValue>> converted_;
};

} // namespace

JSONValue jsonValue(id posted) { return Conversion().convert(posted, 0).value_or(nullptr); }

} // namespace Platform
