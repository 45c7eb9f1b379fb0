#include "Platform/Foundation/JSONEvents.h"

#include "Platform/Foundation/JSON.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>

namespace Platform {

namespace {

/// Passes the library's events on, and counts the depth, for which the library has no limit.
class Adapter {
public:
    using number_integer_t = nlohmann::json::number_integer_t;
    using number_unsigned_t = nlohmann::json::number_unsigned_t;
    using number_float_t = nlohmann::json::number_float_t;
    using string_t = nlohmann::json::string_t;
    using binary_t = nlohmann::json::binary_t;

    explicit Adapter(JSONEvents& events)
        : events_(events) {}

    bool null() { return events_.otherValue(); }
    bool boolean(bool /*value*/) { return events_.otherValue(); }
    bool number_integer(number_integer_t /*value*/) { return events_.otherValue(); }
    bool number_unsigned(number_unsigned_t /*value*/) { return events_.otherValue(); }
    bool number_float(number_float_t value, const string_t& /*text*/) {
        return std::isfinite(value) && events_.otherValue();
    }
    bool string(string_t& value) { return events_.string(value); }
    static bool binary(binary_t& /*value*/) { return false; }

    bool start_object(std::size_t /*count*/) { return descend() && events_.beginObject(); }
    bool key(string_t& name) { return events_.name(name); }
    bool end_object() {
        --depth_;
        return events_.endObject();
    }
    bool start_array(std::size_t /*count*/) { return descend() && events_.beginArray(); }
    bool end_array() {
        --depth_;
        return events_.endArray();
    }

    static bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                            const nlohmann::json::exception& /*error*/) {
        return false;
    }

private:
    bool descend() { return ++depth_ <= JSONValue::maxDepth; }

    JSONEvents& events_;
    std::size_t depth_ = 0;
};

} // namespace

bool readJSON(std::string_view bytes, JSONEvents& events) {
    // NUL is valid nowhere in a JSON text, but the library takes it for the end.
    if (bytes.find('\0') != std::string_view::npos) {
        return false;
    }
    Adapter adapter(events);
    return nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &adapter);
}

} // namespace Platform
