#pragma once

#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <memory>
#include <vector>

namespace Platform {

class TabHost;

struct Application::Native {
    GObjectPtr<GtkApplication> application;
    std::shared_ptr<Menu> mainMenu;
    /// Every top-level that stands, in the order they were made; the only strong owner.
    std::vector<std::shared_ptr<TabHost>> hosts;
    std::weak_ptr<TabHost> lastActive;
    bool finishedLaunching = false;
    std::vector<SignalConnection> connections;

    static int handleCommandLine(GApplication* application, GApplicationCommandLine* line, gpointer self);

    GtkApplication* gtk() const { return application.get(); }
    std::shared_ptr<TabHost> frontHost() const;

    /// The host's last page is gone: lets the host go once its own callbacks have returned.
    void hostEmptied(const std::shared_ptr<TabHost>& host);
};

} // namespace Platform
