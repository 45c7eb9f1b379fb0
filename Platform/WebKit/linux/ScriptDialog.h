#pragma once

#include <webkit/webkit.h>

#include <memory>

namespace Platform {

/// A page's alert or confirmation that waits for its answer. Only the first answer counts; without one,
/// destruction gives the safe one.
class ScriptDialog {
public:
    explicit ScriptDialog(WebKitScriptDialog* dialog);
    ScriptDialog(const ScriptDialog&) = delete;
    ScriptDialog& operator=(const ScriptDialog&) = delete;
    ~ScriptDialog();

    /// `confirmed` says nothing for an alert.
    void answer(bool confirmed);

private:
    struct Unref {
        void operator()(WebKitScriptDialog* dialog) const { webkit_script_dialog_unref(dialog); }
    };
    std::unique_ptr<WebKitScriptDialog, Unref> dialog_;
};

} // namespace Platform
