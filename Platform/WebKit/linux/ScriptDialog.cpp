#include "Platform/WebKit/linux/ScriptDialog.h"

#include <utility>

namespace Platform {

ScriptDialog::ScriptDialog(WebKitScriptDialog* dialog)
    : dialog_(webkit_script_dialog_ref(dialog)) {}

ScriptDialog::~ScriptDialog() { answer(false); }

void ScriptDialog::answer(bool confirmed) {
    const auto dialog = std::exchange(dialog_, nullptr);
    if (!dialog) {
        return;
    }
    if (webkit_script_dialog_get_dialog_type(dialog.get()) == WEBKIT_SCRIPT_DIALOG_CONFIRM) {
        webkit_script_dialog_confirm_set_confirmed(dialog.get(), confirmed ? TRUE : FALSE);
    }
    // Giving the last reference back closes the dialog. To close it by hand is an error while the engine
    // still tells of it, for then it has the last word.
}

} // namespace Platform
