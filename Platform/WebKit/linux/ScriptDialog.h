#pragma once

#include "Platform/WebKit/Reply.h"

#include <webkit/webkit.h>

#include <memory>

namespace Platform {

/// Returns a reply that closes the alert.
std::shared_ptr<Reply<>> alertReply(WebKitScriptDialog* dialog);
/// Returns a reply that sets the result of the confirmation and closes the dialog.
std::shared_ptr<Reply<bool>> confirmReply(WebKitScriptDialog* dialog);

} // namespace Platform
