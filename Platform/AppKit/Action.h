#pragma once

#include <compare>
#include <string_view>

namespace Platform {

class Control;
class MenuItem;

/// An operation that controls and menu items can request. On macOS, its selector is the name plus a colon.
class Action {
public:
    /// The characters of `name` are not copied and must outlive the action, like those of a string literal.
    constexpr explicit Action(std::string_view name)
        : name_(name) {}

    /// The name, without the selector's colon.
    constexpr std::string_view name() const { return name_; }

    friend constexpr auto operator<=>(Action, Action) = default;

private:
    std::string_view name_;
};

/// Actions that AppKit itself performs or sends on macOS. The Linux implementation provides the same actions.
namespace StandardAction {

/// Actions performed by the application.
inline constexpr Action orderFrontStandardAboutPanel("orderFrontStandardAboutPanel");
inline constexpr Action hide("hide");
inline constexpr Action hideOtherApplications("hideOtherApplications");
inline constexpr Action unhideAllApplications("unhideAllApplications");
inline constexpr Action terminate("terminate");
inline constexpr Action arrangeInFront("arrangeInFront");

/// Actions performed by a window.
inline constexpr Action performClose("performClose");
inline constexpr Action performMiniaturize("performMiniaturize");
inline constexpr Action performZoom("performZoom");
inline constexpr Action selectPreviousTab("selectPreviousTab");
inline constexpr Action selectNextTab("selectNextTab");
/// The action of the tab bar's button that opens a new tab.
inline constexpr Action newWindowForTab("newWindowForTab");

/// Actions performed by the text field or page that has the focus.
inline constexpr Action undo("undo");
inline constexpr Action redo("redo");
inline constexpr Action cut("cut");
inline constexpr Action copy("copy");
inline constexpr Action paste("paste");
inline constexpr Action selectAll("selectAll");

} // namespace StandardAction

/// Returns true for the "Edit" actions. The focused text field or page receives their key equivalents first.
constexpr bool isEditing(Action action) {
    using namespace StandardAction;
    return action == undo || action == redo || action == cut || action == copy || action == paste ||
           action == selectAll;
}

/// The sender of an action. At most one member is set. Valid only while the action is performed.
struct ActionSender {
    /// The control or menu item that the user operated, or null.
    const Control* control = nullptr;
    const MenuItem* menuItem = nullptr;
};

} // namespace Platform
