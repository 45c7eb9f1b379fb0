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

/// Receives the application's events, and the actions that no responder before it performs. Main thread only.
class ApplicationDelegate : public Responder {
public:
    /// Called before all other functions of the delegate. Set the main menu here.
    virtual void applicationWillFinishLaunching() = 0;

    /// Called when the application runs, after the URLs of its command line have been passed to
    /// `applicationOpenURLs`.
    virtual void applicationDidFinishLaunching() = 0;

    /// Called with URLs from the command line, the desktop or a second start of the program, exactly as
    /// given. May be called before `applicationDidFinishLaunching`.
    virtual void applicationOpenURLs(const std::vector<URL>& urls) = 0;

    /// Called when the user starts the program again or clicks its icon. Return true for the default
    /// behaviour, which brings the visible windows to the front.
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;

    /// Return true to terminate the application when its last window closes.
    virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;

protected:
    /// `className` is the name of the class in the Objective-C runtime. Ignored on Linux.
    explicit ApplicationDelegate(std::string_view className = {})
        : className_(className) {}

private:
    friend class Application;

    std::string className_;
};

/// The one application object. Main thread only.
class Application : public Responder {
public:
    /// Returns the application. The first call creates it and must come before any other use of AppKit except
    /// `setProgramInfo`.
    static Application& shared();
    /// Returns true after the first call of `shared`.
    static bool exists();

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    ~Application() override;

    /// The way in which macOS presents the program.
    enum class ActivationPolicy {
        /// A program with windows, a menu bar and an icon in the Dock.
        regular,
    };
    /// Has no effect on Linux: every program with windows is a regular one there.
    void setActivationPolicy(ActivationPolicy policy);

    /// The delegate is held weakly.
    void setDelegate(const std::weak_ptr<ApplicationDelegate>& delegate);

    /// Runs until the application is terminated, and returns the process's exit status. The arguments that
    /// parse as URLs with a scheme are passed to the delegate. On Linux a second start passes its arguments
    /// to the running process and returns.
    int run(int argc, char** argv);
    void terminate();

    /// Sets the menu whose items are the titles of the menu bar. Call it before the first window is shown.
    void setMainMenu(const std::shared_ptr<Menu>& menu);
    /// Sets the menu that ends with a list of the open windows.
    void setWindowsMenu(const std::shared_ptr<Menu>& menu);

    /// Returns the selected tab of the window that the user last worked in, or null if no window is visible.
    /// Menus, sheets and other programs do not change it, except that on macOS it is null while the
    /// application is not active.
    std::shared_ptr<Window> mainWindow() const;

    /// Brings the program to the front.
    void activateIgnoringOtherApps();

    /// Sends an action to `target` or, if that is null, to the first object in the responder chain that
    /// responds to it. Returns true if the action was performed.
    bool sendAction(Action action, const std::shared_ptr<Responder>& target, const ActionSender& sender);

    /// Returns the responder that an action without a target would reach now, or null.
    std::shared_ptr<Responder> targetForAction(Action action) const;

    /// Performs the application's standard actions.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

    /// The native side, for Platform's own sources.
    struct Native;
    Native& native() { return *native_; }

    /// Initializes GTK or AppKit, for programs that run the main loop themselves instead of calling `run`.
    void prepare();

protected:
    Application();

private:
    /// Called when the program is started, or started again, with `urls`.
    void wasStarted(const std::vector<URL>& urls);

    std::weak_ptr<ApplicationDelegate> delegate_;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
