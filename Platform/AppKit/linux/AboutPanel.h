#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/Responder.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <memory>

namespace Platform {

/// The one window that says what program this is. It is no dialog: every other window stays usable. It obeys
/// the main menu's key equivalents as they do, and is itself what they close.
class AboutPanel : public Responder {
public:
    AboutPanel() = default;
    AboutPanel(const AboutPanel&) = delete;
    AboutPanel& operator=(const AboutPanel&) = delete;
    ~AboutPanel() override;

    /// Shows the panel, or brings the one that is open to the front, over `parent` where there is one. A
    /// panel that is made now obeys the keys of `mainMenu`, which may be null.
    void orderFront(GtkWindow* parent, const std::shared_ptr<Menu>& mainMenu);
    void close();

    /// Returns true while the keyboard goes to the panel.
    bool isKey() const;

    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

private:
    GObjectPtr<GtkWidget> dialog_;
    SignalConnection closing_;
};

} // namespace Platform
