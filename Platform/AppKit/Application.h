#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/Responder.h"
#include "Platform/AppKit/Window.h"
#include "Platform/Foundation/URL.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// Receives the application's events and the actions that no other responder performs. Main thread only.
class ApplicationDelegate : public Responder {
public:
    /// Called before all other delegate functions. Set the main menu here.
    virtual void applicationWillFinishLaunching() = 0;

    /// Called after launch, once `applicationOpenURLs` has received the URLs on the command line.
    virtual void applicationDidFinishLaunching() = 0;

    /// Called with the unmodified URLs from the command line, the desktop or a second launch of the program.
    /// May be called before `applicationDidFinishLaunching`.
    virtual void applicationOpenURLs(const std::vector<URL>& urls) = 0;

    /// Called when the user launches the program again. Return true to raise the visible windows.
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;

    /// Return true to terminate the application when its last window closes.
    virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;

protected:
    /// On macOS, `className` names the Objective-C class of the native delegate. Ignored on Linux.
    explicit ApplicationDelegate(std::string_view className = {})
        : className_(className) {}

private:
    friend class Application;

    std::string className_;
};

/// The application singleton. Main thread only.
class Application : public Responder {
public:
    /// Returns the application. The first call must precede any other AppKit call except `setProgramInfo`.
    static Application& shared();
    /// Returns true once `shared` has been called.
    static bool exists();

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    ~Application() override;

    /// Determines how macOS presents the program.
    enum class ActivationPolicy {
        /// A program with windows, a menu bar and an icon in the Dock.
        regular,
    };
    /// Sets the policy. Ignored on Linux, where every program with windows is a regular application.
    void setActivationPolicy(ActivationPolicy policy);

    /// Sets the delegate, which is held weakly.
    void setDelegate(const std::weak_ptr<ApplicationDelegate>& delegate);

    /// Runs the application until it terminates, and returns the process's exit status. Arguments that parse
    /// as URLs with a scheme are passed to the delegate. On Linux, if the program is already running, passes
    /// the arguments to the running process and returns.
    int run(int argc, char** argv);
    void terminate();

    /// Sets the main menu, whose items form the menu bar. Call it before the first window is shown.
    void setMainMenu(const std::shared_ptr<Menu>& menu);
    /// Sets the menu that lists the open windows after its own items.
    void setWindowsMenu(const std::shared_ptr<Menu>& menu);

    /// Returns the selected tab of the most recently used window. Returns null if no window is visible or, on
    /// macOS, while the application is inactive. Opening a menu or a sheet does not change the main window;
    /// on Linux, neither does switching to another program.
    std::shared_ptr<Window> mainWindow() const;

    /// Brings the application to the front.
    void activateIgnoringOtherApps();

    /// Implement the application's standard actions.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

    /// The native side of the application. Internal to Platform.
    struct Native;
    Native& native() { return *native_; }

    /// Initializes GTK or AppKit, for programs that run the main loop themselves instead of calling `run`.
    void prepare();

protected:
    Application();

private:
    /// Called on the first launch and, on Linux, on each later launch while the program is running.
    void wasStarted(const std::vector<URL>& urls);

    std::weak_ptr<ApplicationDelegate> delegate_;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
