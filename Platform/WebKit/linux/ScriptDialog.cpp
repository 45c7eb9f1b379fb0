#include "Platform/WebKit/linux/ScriptDialog.h"

namespace Platform {

namespace {

/// Shares ownership of the dialog, which closes when the last reference is released. It is an error to call
/// webkit_script_dialog_close() while `script-dialog` is being emitted.
std::shared_ptr<WebKitScriptDialog> share(WebKitScriptDialog* dialog) {
    return {webkit_script_dialog_ref(dialog), &webkit_script_dialog_unref};
}

} // namespace

std::shared_ptr<Reply<>> alertReply(WebKitScriptDialog* dialog) {
    return std::make_shared<Reply<>>([shared = share(dialog)] {});
}

std::shared_ptr<Reply<bool>> confirmReply(WebKitScriptDialog* dialog) {
    return std::make_shared<Reply<bool>>(
        [shared = share(dialog)](bool confirmed) {
            webkit_script_dialog_confirm_set_confirmed(shared.get(), confirmed ? TRUE : FALSE);
        },
        false);
}

} // namespace Platform
