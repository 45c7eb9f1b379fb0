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
    /// Created when the first window is shown.
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

    /// The visible hosts, including minimised hosts, but not those that were ordered out.
    std::vector<std::shared_ptr<TabHost>> visibleHosts() const;
    /// The visible host that was used last, or null.
    std::shared_ptr<TabHost> frontHost() const;
    /// Brings all visible hosts to the front, including minimised hosts. Preserves the order in which they
    /// were last used.
    void bringAllToFront() const;

    /// Called when the last page of the host has been removed. Releases the host after its own callbacks have
    /// returned.
    void hostEmptied(const std::shared_ptr<TabHost>& host);
};

} // namespace Platform
