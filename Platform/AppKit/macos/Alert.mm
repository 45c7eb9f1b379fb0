#include "Platform/AppKit/Alert.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/macos/Sheet.h"
#include "Platform/AppKit/macos/WindowNative.h"
#include "Platform/Foundation/macos/Conversions.h"

#include <utility>

namespace Platform {

namespace {

NSAlert* makeNativeAlert(const Alert& alert) {
    NSAlert* const native = [[NSAlert alloc] init];
    native.alertStyle =
        alert.style == Alert::Style::warning ? NSAlertStyleWarning : NSAlertStyleInformational;
    native.messageText = toNSString(alert.messageText);
    native.informativeText = toNSString(alert.informativeText);
    for (const std::string& title : alert.buttonTitles) {
        [native addButtonWithTitle:toNSString(title)];
    }
    return native;
}

std::size_t safeButtonOf(const Alert& alert) {
    return alert.buttonTitles.empty() ? Alert::firstButton : alert.buttonTitles.size() - 1;
}

/// The chosen button's index; `safeButton` where the alert ended otherwise.
std::size_t chosenButton(NSModalResponse response, std::size_t safeButton) {
    return response < NSAlertFirstButtonReturn
               ? safeButton
               : static_cast<std::size_t>(response - NSAlertFirstButtonReturn);
}

} // namespace

Sheet::Sheet(const Alert& alert, Alert::Completion completion)
    : alert_(makeNativeAlert(alert))
    , safeButton_(safeButtonOf(alert))
    , completion_(std::move(completion)) {
    // By default AppKit refuses to quit while a window has a sheet.
    alert_.window.preventsApplicationTerminationWhenModal = NO;
}

void Sheet::answer(NSModalResponse response) { complete(chosenButton(response, safeButton_)); }

void Sheet::answerSafely() { complete(safeButton_); }

void Sheet::complete(std::size_t button) {
    if (const auto completion = std::exchange(completion_, nullptr)) {
        completion(button);
    }
}

void Alert::beginSheetModal(const std::shared_ptr<Window>& window, Completion completion) const {
    assertMainThread("Alert::beginSheetModal");
    Window::Native::addSheet(*window, std::make_shared<Sheet>(*this, std::move(completion)));
}

std::size_t Alert::runModal() const {
    assertMainThread("Alert::runModal");
    return chosenButton([makeNativeAlert(*this) runModal], safeButtonOf(*this));
}

} // namespace Platform
