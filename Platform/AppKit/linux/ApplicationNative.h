#pragma once

#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/linux/AboutPanel.h"
#include "Platform/AppKit/linux/TabHost.h"

#include <map>
#include <vector>

namespace Platform {

struct Application::Native {
    explicit Native(Application& application)
        : owner(application) {}

    Application& owner;
    TabHosts hosts;
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

    std::shared_ptr<Responder> targetForAction(Action action);

    GtkApplication* gtk() const { return hosts.application.get(); }
};

} // namespace Platform
