#include "Platform/WebKit/UserContentController.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/Foundation/MakeShared.h"

namespace Platform {

JSONValue ScriptMessage::bodyOf(const std::string& json) {
    // JSONValue::parse accepts only an array or an object at the top level, so wrap the value in an array.
    const auto list = JSONValue::parse("[" + json + "]");
    return list && list->array() && list->array()->size() == 1 ? list->array()->front() : nullptr;
}

std::shared_ptr<UserContentController> UserContentController::create() {
    assertMainThread("UserContentController::create");
    return makeShared<UserContentController>();
}

} // namespace Platform
