#pragma once

namespace Platform {

class Control;
class MenuItem;

/// What a control or a menu item asks for. The names are those of the selectors that carry the same meaning
/// on macOS, without their colon.
enum class Action {
    // The application's own.
    newTab,
    focusAddressBar,
    navigateFromAddressField,
    searchFromSearchField,
    reload,
    stopLoading,
    goBack,
    goForward,
    toggleBookmark,
    openBookmark,
    newWindowForTab,
    // Application.
    orderFrontStandardAboutPanel,
    hide,
    hideOtherApplications,
    unhideAllApplications,
    terminate,
    arrangeInFront,
    // Window.
    performClose,
    performMiniaturize,
    performZoom,
    selectPreviousTab,
    selectNextTab,
    // Text editing, for the focused field or page.
    undo,
    redo,
    cut,
    copy,
    paste,
    selectAll,
};

/// Whether the action edits text: the focused field or page has it before anybody else.
constexpr bool isEditing(Action action) {
    switch (action) {
    case Action::undo:
    case Action::redo:
    case Action::cut:
    case Action::copy:
    case Action::paste:
    case Action::selectAll:
        return true;
    default:
        return false;
    }
}

/// Who sent an action: at most one of the two is set. Valid during the call only.
struct ActionSender {
    const Control* control = nullptr;
    const MenuItem* menuItem = nullptr;
};

} // namespace Platform
