#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/Responder.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <memory>

namespace Platform {

/// The About window. It is not modal, and the main menu's key equivalents work in it.
class AboutPanel : public Responder {
public:
    AboutPanel() = default;
    AboutPanel(const AboutPanel&) = delete;
    AboutPanel& operator=(const AboutPanel&) = delete;
    ~AboutPanel() override;

    /// Shows the panel, or raises it if it is already open. Keeps it above `parent`, unless `parent` is null.
    /// A newly opened panel gets the key equivalents of `mainMenu`, which may be null.
    void orderFront(GtkWindow* parent, const std::shared_ptr<Menu>& mainMenu);
    void close();

    /// Returns true if the panel has the keyboard focus.
    bool isKey() const;

    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

private:
    gboolean closeRequested(GtkWindow* dialog);

    GObjectPtr<GtkWidget> dialog_;
    SignalConnection closing_;
};

} // namespace Platform
