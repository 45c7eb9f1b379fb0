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
    explicit Native(Application& application)
        : owner(application) {}

    Application& owner;
    GObjectPtr<GtkApplication> application;
    std::shared_ptr<Menu> mainMenu;
    std::weak_ptr<Menu> windowsMenu;
    /// All open top-level windows, in creation order. The only strong references to them.
    std::vector<std::shared_ptr<TabHost>> hosts;
    /// Created with the first window.
    std::unique_ptr<SavedFrames> frames;
    AboutPanel aboutPanel;
    bool finishedLaunching = false;
    std::vector<SignalConnection> connections;

    /// The actions that the application performs itself.
    static const std::map<Action, void (*)(Application&)>& actions();

    void connect();
    void startedUp(GApplication* started);
    void activated(GApplication* application);
    int commandLineReceived(GApplication* application, GApplicationCommandLine* line);
    void opened(GApplication* application, GFile** files, int count, const char* hint);

    GtkApplication* gtk() const { return application.get(); }
    SavedFrames& savedFrames();

    /// The hosts on the screen, minimised ones included. The others were ordered out.
    std::vector<std::shared_ptr<TabHost>> visibleHosts() const;
    /// The visible host that was used last.
    std::shared_ptr<TabHost> frontHost() const;
    /// Brings all hosts on the screen to the front, minimised ones too, in the order in which they were last
    /// used.
    void bringAllToFront() const;

    /// Called when the host's last page is gone. Releases the host once its own callbacks have returned.
    void hostEmptied(const std::shared_ptr<TabHost>& host);
};

} // namespace Platform
