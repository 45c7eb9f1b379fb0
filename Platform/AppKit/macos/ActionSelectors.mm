#include "Platform/AppKit/macos/ActionSelectors.h"

#include "Platform/Foundation/FatalError.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <array>

/// Selectors that AppKit itself does not declare as actions of a class.
@protocol KeyloftActions
- (void)newTab:(id)sender;
- (void)focusAddressBar:(id)sender;
- (void)navigateFromAddressField:(id)sender;
- (void)searchFromSearchField:(id)sender;
- (void)reload:(id)sender;
- (void)stopLoading:(id)sender;
- (void)goBack:(id)sender;
- (void)goForward:(id)sender;
- (void)toggleBookmark:(id)sender;
- (void)openBookmark:(id)sender;
- (void)undo:(id)sender;
- (void)redo:(id)sender;
@end

namespace Platform {

std::span<const ActionSelector> actionSelectors() {
    static const std::array table = std::to_array<ActionSelector>({
        {Action::newTab, @selector(newTab:)},
        {Action::focusAddressBar, @selector(focusAddressBar:)},
        {Action::navigateFromAddressField, @selector(navigateFromAddressField:)},
        {Action::searchFromSearchField, @selector(searchFromSearchField:)},
        {Action::reload, @selector(reload:)},
        {Action::stopLoading, @selector(stopLoading:)},
        {Action::goBack, @selector(goBack:)},
        {Action::goForward, @selector(goForward:)},
        {Action::toggleBookmark, @selector(toggleBookmark:)},
        {Action::openBookmark, @selector(openBookmark:)},
        {Action::newWindowForTab, @selector(newWindowForTab:)},
        {Action::orderFrontStandardAboutPanel, @selector(orderFrontStandardAboutPanel:)},
        {Action::hide, @selector(hide:)},
        {Action::hideOtherApplications, @selector(hideOtherApplications:)},
        {Action::unhideAllApplications, @selector(unhideAllApplications:)},
        {Action::terminate, @selector(terminate:)},
        {Action::arrangeInFront, @selector(arrangeInFront:)},
        {Action::performClose, @selector(performClose:)},
        {Action::performMiniaturize, @selector(performMiniaturize:)},
        {Action::performZoom, @selector(performZoom:)},
        {Action::selectPreviousTab, @selector(selectPreviousTab:)},
        {Action::selectNextTab, @selector(selectNextTab:)},
        {Action::undo, @selector(undo:)},
        {Action::redo, @selector(redo:)},
        {Action::cut, @selector(cut:)},
        {Action::copy, @selector(copy:)},
        {Action::paste, @selector(paste:)},
        {Action::selectAll, @selector(selectAll:)},
    });
    return table;
}

SEL selectorFor(Action action) {
    const auto table = actionSelectors();
    const auto found = std::ranges::find(table, action, &ActionSelector::action);
    if (found == table.end()) {
        fatalError("an action without a selector");
    }
    return found->selector;
}

std::optional<Action> actionFor(SEL selector) {
    for (const auto& entry : actionSelectors()) {
        if (entry.selector == selector) {
            return entry.action;
        }
    }
    return std::nullopt;
}

} // namespace Platform
