#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// Is told what a JSON text holds while it is read, for texts too large to be kept as values. Each operation
/// returns whether reading shall go on.
class JSONEvents {
public:
    JSONEvents() = default;
    JSONEvents(const JSONEvents&) = delete;
    JSONEvents& operator=(const JSONEvents&) = delete;
    virtual ~JSONEvents() = default;

    virtual bool beginArray() = 0;
    virtual bool endArray() = 0;
    virtual bool beginObject() = 0;
    /// The name of the member that follows; may be moved from.
    virtual bool name(std::string& name) = 0;
    virtual bool endObject() = 0;
    /// A string; may be moved from.
    virtual bool string(std::string& value) = 0;
    /// Null, true, false or a number.
    virtual bool otherValue() = 0;
};

/// Reads `bytes` with the same strictness and limits as JSONValue::parse, except that the outermost value may
/// be of any kind. False where the text is not valid or `events` stopped the reading; what was told until
/// then is void. Takes any input, of any size, without deep recursion and in little memory beyond the longest
/// string's.
bool readJSON(std::string_view bytes, JSONEvents& events);

} // namespace Platform
