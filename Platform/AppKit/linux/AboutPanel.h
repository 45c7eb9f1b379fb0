#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

namespace Platform {

/// The one window that says what program this is. It is no dialog: every other window stays usable.
class AboutPanel {
public:
    AboutPanel() = default;
    AboutPanel(const AboutPanel&) = delete;
    AboutPanel& operator=(const AboutPanel&) = delete;
    ~AboutPanel();

    /// Shows the panel, or brings the one that is open to the front, over `parent` where there is one.
    void orderFront(GtkWindow* parent);
    void close();

private:
    GObjectPtr<GtkWidget> dialog_;
    SignalConnection closing_;
};

} // namespace Platform
