#include "KeyloftCore/SubmittedForm.h"

#include "Platform/Foundation/Characters.h"

namespace KeyloftCore {

constexpr std::string_view SubmittedForm::hookScript =
    R"((function () {
  function send(form) {
    try {
      var fields = {};
      new FormData(form).forEach(function (v, k) { fields[k] = String(v); });
      window.webkit.messageHandlers.keyloft.postMessage({ action: form.action, method: form.method, fields: fields });
    } catch (e) {}
  }
  document.addEventListener('submit', function (e) { if (e.target && e.target.tagName === 'FORM') send(e.target); }, true);
  var orig = HTMLFormElement.prototype.submit;
  HTMLFormElement.prototype.submit = function () { send(this); return orig.apply(this, arguments); };
})();)";

std::string SubmittedForm::shownAction() const { return Platform::characterPrefix(action, 80); }

std::optional<SubmittedForm> SubmittedForm::fromMessage(const Platform::JSONValue& body) {
    const auto* action = body.stringMember("action");
    const auto* fields = body.member("fields");
    if (action == nullptr || fields == nullptr || fields->object() == nullptr) {
        return std::nullopt;
    }
    SubmittedForm form{.action = *action, .fields = {}};
    for (const auto& [name, value] : *fields->object()) {
        if (value.string() == nullptr) {
            return std::nullopt;
        }
        form.fields.emplace(name, *value.string());
    }
    return form;
}

} // namespace KeyloftCore
