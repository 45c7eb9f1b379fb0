#include "Platform/AppKit/Application.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/AppKit/StartArguments.h"
#include "Platform/AppKit/WindowController.h"
#include "Platform/AppKit/linux/Acceleration.h"
#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/TabStrip.h"
#include "Platform/AppKit/linux/WindowNative.h"
#include "Platform/Foundation/DiagnosticLog.h"

#include <adwaita.h>

#include <cstdlib>
#include <map>
#include <span>
#include <string>

namespace Platform {

namespace {

constexpr const char* themeVariable = "GTK_THEME";
constexpr const char* emptyTheme = "Adwaita-empty";

/// Keeps GTK from parsing its own style sheet, which libadwaita replaces anyway. Parsing accounts for a tenth
/// of the time until the first window appears (seen with GTK 4.8.3, not reported). The user's theme is kept.
void holdBackToolkitTheme() { g_setenv(themeVariable, emptyTheme, FALSE); }

void startLibadwaita() {
    if (g_strcmp0(g_getenv(themeVariable), emptyTheme) == 0) {
        g_unsetenv(themeVariable);
    }
    adw_init();
}

/// Removes the address of the session bus from the environment if the bus is not connected. WebKitGTK aborts
/// if the session bus does not respond, but works without a session bus (seen with 2.50.6, not reported).
void forgetDeadBus(GApplication* application) {
    if (g_application_get_dbus_connection(application)) {
        return;
    }
    g_unsetenv("DBUS_SESSION_BUS_ADDRESS");
    // Without a session bus GTK still finds the display's accessibility bus, and then crashes because the
    // application has no object path. Seen with 4.8.3;
    // https://gitlab.gnome.org/GNOME/gtk/-/commit/0eb791eaaa2672ffdb69c4bca47125aea6b1c2ba adds a path.
    g_setenv("GTK_A11Y", "none", TRUE);
}

/// Exits with an error message if no display can be opened. GTK's own message does not say what is missing.
void startWithDisplay(GApplication* application) {
    if (!gtk_init_check()) {
        diagnosticLog(programInfo().name +
                      " needs a display: neither WAYLAND_DISPLAY nor DISPLAY names one that can be opened");
        std::exit(EXIT_FAILURE);
    }
    G_APPLICATION_CLASS(g_type_class_peek(GTK_TYPE_APPLICATION))->startup(application);
}

GType applicationType() {
    const GClassInitFunc initClass = [](gpointer type, gpointer /*data*/) {
        G_APPLICATION_CLASS(type)->startup = startWithDisplay;
    };
    static const GType type =
        g_type_register_static_simple(GTK_TYPE_APPLICATION, "KeyloftApplication", sizeof(GtkApplicationClass),
                                      initClass, sizeof(GtkApplication), nullptr, GTypeFlags{});
    return type;
}

/// Makes this process the primary instance, or connects it to the existing primary instance. Tries once more
/// if that instance exits before it responds. If it does not respond, logs a message and returns false.
bool registerApplication(GApplication* application) {
    for (bool isAskedAgain = false;; isAskedAgain = true) {
        GError* failure = nullptr;
        if (g_application_register(application, nullptr, &failure)) {
            return true;
        }
        const std::unique_ptr<GError, decltype(&g_error_free)> error(failure, &g_error_free);
        if (isAskedAgain || g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) {
            diagnosticLog(programInfo().name + " is already running but does not respond: " + error->message +
                          ". End it and start again.");
            return false;
        }
    }
}

} // namespace

Application::Application()
    : native_(std::make_unique<Native>(*this)) {
    assertMainThread("Application::shared");
    chooseAcceleration();
    holdBackToolkitTheme();
    // Without a valid application ID, GApplication does not claim a name on the session bus.
    const std::string& identifier = programInfo().identifier;
    const char* id = g_application_id_is_valid(identifier.c_str()) ? identifier.c_str() : nullptr;
    // A second launch passes its unchanged command line to the running process. D-Bus activation passes a
    // list of files instead, in which GVfs rewrites all URLs except http and https URLs.
    native_->hosts.application = GObjectPtr<GtkApplication>::adopt(GTK_APPLICATION(
        g_object_new(applicationType(), "application-id", id, "flags",
                     G_APPLICATION_HANDLES_COMMAND_LINE | G_APPLICATION_HANDLES_OPEN, nullptr)));
    native_->connect();
}

Application::~Application() = default;

void Application::setActivationPolicy(ActivationPolicy /*policy*/) {}

void Application::setDelegate(const std::weak_ptr<ApplicationDelegate>& delegate) { delegate_ = delegate; }

int Application::run(int argc, char** argv) {
    GtkApplication* application = native_->gtk();
    if (!registerApplication(G_APPLICATION(application))) {
        return EXIT_FAILURE;
    }
    const int status = g_application_run(G_APPLICATION(application), argc, argv);
    native_->aboutPanel.close();
    if (native_->hosts.frames) {
        native_->hosts.frames->save();
    }
    return status;
}

void Application::Native::connect() {
    connections.push_back(connectSignal<&Native::startedUp>(gtk(), "startup", *this));
    connections.push_back(connectSignal<&Native::activated>(gtk(), "activate", *this));
    connections.push_back(connectSignal<&Native::commandLineReceived>(gtk(), "command-line", *this));
    connections.push_back(connectSignal<&Native::opened>(gtk(), "open", *this));
    hosts.lastHostClosed = [this] {
        const auto delegate = owner.delegate_.lock();
        if (delegate && delegate->applicationShouldTerminateAfterLastWindowClosed()) {
            owner.terminate();
        }
    };
}

void Application::Native::startedUp(GApplication* started) {
    forgetDeadBus(started);
    startLibadwaita();
    installStyle();
    endTabDragsOnBareDesktop();
    if (const auto delegate = owner.delegate_.lock()) {
        delegate->applicationWillFinishLaunching();
    }
}

void Application::Native::activated(GApplication* /*application*/) { owner.wasStarted({}); }

int Application::Native::commandLineReceived(GApplication* /*application*/, GApplicationCommandLine* line) {
    int count = 0;
    const std::unique_ptr<char*, decltype(&g_strfreev)> arguments(
        g_application_command_line_get_arguments(line, &count), &g_strfreev);
    const std::span<char* const> all(arguments.get(), static_cast<std::size_t>(count));
    owner.wasStarted(urlsOf(all.subspan(all.empty() ? 0 : 1)));
    return EXIT_SUCCESS;
}

void Application::Native::opened(GApplication* /*application*/, GFile** files, int count,
                                 const char* /*hint*/) {
    std::vector<std::unique_ptr<char, decltype(&g_free)>> texts;
    std::vector<char*> pointers;
    for (GFile* file : std::span(files, static_cast<std::size_t>(count))) {
        pointers.push_back(texts.emplace_back(g_file_get_uri(file), &g_free).get());
    }
    owner.wasStarted(urlsOf(pointers));
}

void Application::prepare() {
    // Programs that call this function receive no URLs and may run at the same time as the browser.
    auto* application = G_APPLICATION(native_->gtk());
    g_application_set_flags(application, static_cast<GApplicationFlags>(g_application_get_flags(application) |
                                                                        G_APPLICATION_NON_UNIQUE));
    g_application_register(application, nullptr, nullptr);
}

void Application::wasStarted(const std::vector<URL>& urls) {
    const auto delegate = delegate_.lock();
    if (!delegate) {
        return;
    }
    if (!urls.empty()) {
        delegate->applicationOpenURLs(urls);
    }
    if (!native_->finishedLaunching) {
        native_->finishedLaunching = true;
        // Hold the application after the first request. A D-Bus service without requests exits by itself.
        g_application_hold(G_APPLICATION(native_->gtk()));
        delegate->applicationDidFinishLaunching();
    } else if (urls.empty()) {
        const bool visible = !native_->hosts.visible().empty();
        if (delegate->applicationShouldHandleReopen(visible) && visible) {
            native_->hosts.bringAllToFront();
        }
    }
}

void Application::terminate() { g_application_quit(G_APPLICATION(native_->gtk())); }

void Application::setMainMenu(const std::shared_ptr<Menu>& menu) { native_->hosts.mainMenu = menu; }

void Application::setWindowsMenu(const std::shared_ptr<Menu>& menu) { native_->hosts.windowsMenu = menu; }

std::shared_ptr<Window> Application::mainWindow() const { return native_->hosts.mainWindow(); }

void Application::activateIgnoringOtherApps() {
    if (const auto host = native_->hosts.front()) {
        gtk_window_present(host->toplevel());
    }
}

std::shared_ptr<Responder> Application::Native::targetForAction(Action action) {
    // If the About panel is the key window, it precedes the main window in the responder chain. A non-owning
    // pointer is enough, because the panel exists until the process exits.
    if (aboutPanel.isKey() && aboutPanel.respondsTo(action)) {
        return {std::shared_ptr<void>(), &aboutPanel};
    }
    if (const auto window = hosts.mainWindow()) {
        for (std::shared_ptr<View> view = window->firstResponder(); view; view = view->superview()) {
            if (view->respondsTo(action)) {
                return view;
            }
        }
        if (window->respondsTo(action)) {
            return window;
        }
        if (const auto controller = window->windowController();
            controller && controller->respondsTo(action)) {
            return controller;
        }
    }
    if (owner.respondsTo(action)) { // the application exists until the process exits
        return {std::shared_ptr<void>(), &owner};
    }
    if (const auto delegate = owner.delegate_.lock(); delegate && delegate->respondsTo(action)) {
        return delegate;
    }
    return nullptr;
}

const std::map<Action, void (*)(Application&)>& Application::Native::actions() {
    static const std::map<Action, void (*)(Application&)> table = {
        {StandardAction::orderFrontStandardAboutPanel,
         [](Application& self) {
             const auto host = self.native_->hosts.front();
             self.native_->aboutPanel.orderFront(host ? host->toplevel() : nullptr,
                                                 self.native_->hosts.mainMenu);
         }},
        {StandardAction::hide,
         [](Application& self) {
             for (const auto& host : self.native_->hosts.visible()) {
                 gtk_window_minimize(host->toplevel());
             }
         }},
        {StandardAction::hideOtherApplications, [](Application&) {}},
        {StandardAction::unhideAllApplications,
         [](Application& self) { self.native_->hosts.bringAllToFront(); }},
        {StandardAction::arrangeInFront, [](Application& self) { self.native_->hosts.bringAllToFront(); }},
        {StandardAction::terminate, [](Application& self) { self.terminate(); }},
    };
    return table;
}

bool Application::respondsTo(Action action) const { return Native::actions().contains(action); }

void Application::perform(Action action, const ActionSender& /*sender*/) {
    Native::actions().at(action)(*this);
}

bool Application::validateMenuItem(MenuItem& item) {
    // No desktop environment lets a program hide the windows of other programs.
    return item.action() != StandardAction::hideOtherApplications;
}

// With `--gapplication-service`, GApplication waits for a request over D-Bus.
bool isSystemArgument(std::string_view argument) { return argument == "--gapplication-service"; }

std::shared_ptr<Responder> targetForAction(Action action) {
    return Application::shared().native().targetForAction(action);
}

AdwTabView* createTopLevel(const Window& window) {
    const auto host = Application::shared().native().hosts.create();
    host->setFrame(window);
    return host->tabView();
}

} // namespace Platform
