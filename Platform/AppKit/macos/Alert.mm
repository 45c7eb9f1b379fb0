#include "Platform/AppKit/Alert.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/macos/AlertNative.h"
#include "Platform/Foundation/macos/Conversions.h"

namespace Platform {

NSAlert* makeNativeAlert(const Alert& alert) {
    NSAlert* const native = [[NSAlert alloc] init];
    native.alertStyle =
        alert.style == Alert::Style::warning ? NSAlertStyleWarning : NSAlertStyleInformational;
    native.messageText = toNSString(alert.messageText);
    native.informativeText = toNSString(alert.informativeText);
    for (const std::string& title : alert.buttonTitles) {
        [native addButtonWithTitle:toNSString(title)];
    }
    // Let the application quit while a window has a sheet. By default, AppKit prevents this.
    native.window.preventsApplicationTerminationWhenModal = NO;
    return native;
}

std::size_t chosenButton(const Alert& alert, NSModalResponse response) {
    return response < NSAlertFirstButtonReturn
               ? alert.safeButton()
               : static_cast<std::size_t>(response - NSAlertFirstButtonReturn);
}

std::size_t Alert::runModal() const {
    assertMainThread("Alert::runModal");
    return chosenButton(*this, [makeNativeAlert(*this) runModal]);
}

} // namespace Platform
