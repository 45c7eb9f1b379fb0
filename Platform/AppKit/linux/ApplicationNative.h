#pragma once

#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/linux/AboutPanel.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/SavedFrames.h"

#include <map>
#include <memory>
#include <vector>

namespace Platform {

class TabHost;

struct Application::Native {
    GObjectPtr<GtkApplication> application;
    std::shared_ptr<Menu> mainMenu;
    std::weak_ptr<Menu> windowsMenu;
    /// All open top-level windows, in creation order. The only strong references to them.
    std::vector<std::shared_ptr<TabHost>> hosts;
    /// Made when the first window is.
    std::unique_ptr<SavedFrames> frames;
    AboutPanel aboutPanel;
    bool finishedLaunching = false;
    std::vector<SignalConnection> connections;

    /// What the application itself performs.
    static const std::map<Action, void (*)(Application&)>& actions();
    static int handleCommandLine(GApplication* application, GApplicationCommandLine* line, gpointer self);
    static void handleOpen(GApplication* application, GFile** files, int count, const char* hint,
                           gpointer self);

    GtkApplication* gtk() const { return application.get(); }
    SavedFrames& savedFrames();

    /// Those that are on the screen, minimised ones too; the others were ordered out.
    std::vector<std::shared_ptr<TabHost>> visibleHosts() const;
    /// The one of them that was last worked in.
    std::shared_ptr<TabHost> frontHost() const;
    /// Brings every top-level to the front, minimised ones too, in the order in which they were worked in.
    void bringAllToFront() const;

    /// The host's last page is gone: lets the host go once its own callbacks have returned.
    void hostEmptied(const std::shared_ptr<TabHost>& host);
};

} // namespace Platform
