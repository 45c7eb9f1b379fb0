#pragma once

#include "Platform/WebKit/Reply.h"

#include <webkit/webkit.h>

#include <memory>

namespace Platform {

/// Answers a page's alert by closing it.
std::shared_ptr<Reply<>> alertReply(WebKitScriptDialog* dialog);
/// Answers a page's confirmation and closes it.
std::shared_ptr<Reply<bool>> confirmReply(WebKitScriptDialog* dialog);

} // namespace Platform
