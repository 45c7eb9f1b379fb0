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
    /// The first of these calls. Set the main menu here.
    virtual void applicationWillFinishLaunching() = 0;

    /// The program runs. URLs that it was started with have been opened.
    virtual void applicationDidFinishLaunching() = 0;

    /// URLs handed over by the system or by a second start, exactly as given; may come before
    /// `applicationDidFinishLaunching`.
    virtual void applicationOpenURLs(const std::vector<URL>& urls) = 0;

    /// The user started the program again, or clicked its icon. Returns whether the system is to do what it
    /// usually does.
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;

    /// Returns true to end the program with its last window.
    virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;

protected:
    /// `className` is the name under which an object runtime, where there is one, knows the class.
    explicit ApplicationDelegate(std::string_view className = {})
        : className_(className) {}

private:
    friend class Application;

    std::string className_;
};

/// The one application object. Main thread only.
class Application : public Responder {
public:
    /// Made at the first call, which must come before anything else of AppKit.
    static Application& shared();
    /// Whether it has been made.
    static bool exists();

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    ~Application() override;

    /// How the system presents the program.
    enum class ActivationPolicy {
        /// A program with windows and a menu bar, listed among the running ones.
        regular,
    };
    /// No effect on Linux, where each program with windows is a regular one.
    void setActivationPolicy(ActivationPolicy policy);

    /// Held weakly: the program keeps its delegate.
    void setDelegate(const std::weak_ptr<ApplicationDelegate>& delegate);

    /// Runs until the application is terminated; returns the process's exit status. `arguments` are the
    /// program's, of which those that parse as URLs with a scheme are handed to the delegate.
    int run(int argc, char** argv);
    void terminate();

    /// The items of `menu` are the titles of the menu bar. Call it before the first window is shown.
    void setMainMenu(const std::shared_ptr<Menu>& menu);
    /// The menu in which the system lists the open windows.
    void setWindowsMenu(const std::shared_ptr<Menu>& menu);

    /// The selected tab of the window that the user last worked in; menus, sheets and other programs do not
    /// change it. On macOS there is none while the application is not the active one.
    std::shared_ptr<Window> mainWindow() const;

    /// Brings the program to the front.
    void activateIgnoringOtherApps();

    /// Sends an action to `target`, or, without one, to the first of the responder chain that responds.
    /// Returns whether anybody did.
    bool sendAction(Action action, const std::shared_ptr<Responder>& target, const ActionSender& sender);

    /// Whoever would receive the action now.
    std::shared_ptr<Responder> targetForAction(Action action) const;

    /// Performs the application's standard actions.
    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;
    bool validateMenuItem(MenuItem& item) override;

    /// The system's side, for Platform's own sources.
    struct Native;
    Native& native() { return *native_; }

    /// Makes the toolkit ready without running: for programs that drive the main loop themselves.
    void prepare();

protected:
    Application();

private:
    /// The program was started, or started again, with these URLs.
    void wasStarted(const std::vector<URL>& urls);

    std::weak_ptr<ApplicationDelegate> delegate_;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
