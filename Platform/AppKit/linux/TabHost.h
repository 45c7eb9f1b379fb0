#pragma once

#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/MenuBar.h"
#include "Platform/AppKit/linux/ReturnedKeys.h"
#include "Platform/AppKit/linux/SavedFrames.h"

#include <adwaita.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace Platform {

class TabHosts;

/// A native top-level window: the menu bar, the tab strip, and the pages of the windows that share it.
class TabHost : public std::enable_shared_from_this<TabHost> {
public:
    /// Returns the host with this top-level window.
    static std::shared_ptr<TabHost> of(GtkWindow* toplevel);
    /// Returns the host that currently contains the window's page, or null.
    static std::shared_ptr<TabHost> of(Window& window);

    TabHost(const TabHost&) = delete;
    TabHost& operator=(const TabHost&) = delete;
    ~TabHost();

    GtkWindow* toplevel() const { return GTK_WINDOW(toplevel_.get()); }
    AdwTabView* tabView() const { return tabView_; }
    MenuBar* menuBar() const { return menuBar_.get(); }

    std::shared_ptr<Window> selectedWindow() const;
    std::vector<std::shared_ptr<Window>> windows() const;

    void present();

    /// Restores the frame that is saved under `window`'s autosave name, or sets one that fits `window`'s
    /// content size. Also applies the window's style. Call it before the top-level window is first presented.
    void setFrame(const Window& window);

    /// A number that orders hosts by their last use. The host that was used last has the greatest number.
    std::uint64_t lastUse() const { return lastUse_; }

protected:
    explicit TabHost(TabHosts& hosts);

private:
    void wasUsed();
    template <auto handler>
    void connect(gpointer instance, const char* signal);
    gboolean closeRequested(GtkWindow* toplevel);
    gboolean closePageRequested(AdwTabView* view, AdwTabPage* page);
    void pageCountChanged(AdwTabView* view, GParamSpec* property);
    void selectionChanged(AdwTabView* view, GParamSpec* property);
    AdwTabView* windowWanted(AdwTabView* view);
    void focusChanged(GtkWindow* toplevel, GParamSpec* property);
    void frameChanged(GtkWindow* toplevel, GParamSpec* property);
    void activeChanged(GtkWindow* toplevel, GParamSpec* property);
    void newTabClicked(GtkButton* button);

    TabHosts& hosts_;
    GObjectPtr<GtkWidget> toplevel_;
    ReturnedKeys returnedKeys_;
    AdwTabView* tabView_ = nullptr; // owned by `toplevel_`
    std::unique_ptr<MenuBar> menuBar_;
    std::uint64_t lastUse_ = 0;
    std::vector<SignalConnection> connections_;
};

/// Owns the open top-level windows and their shared state. Must outlive every TabHost. Main thread only.
class TabHosts final : public MenuBarSource {
public:
    /// The application to which the top-level windows belong.
    GObjectPtr<GtkApplication> application;
    /// Called when the last top-level window has lost its last page.
    std::function<void()> lastHostClosed;

    /// Creates an invisible, empty host.
    std::shared_ptr<TabHost> create();
    /// Releases an empty host after its callbacks have returned.
    void remove(const std::shared_ptr<TabHost>& host);

    SavedFrames& savedFrames();
    /// The saved window frames. Null until the first window is shown.
    std::unique_ptr<SavedFrames> frames;

    /// All hosts, in creation order.
    const std::vector<std::shared_ptr<TabHost>>& all() const { return hosts_; }
    /// The visible hosts, including minimized hosts, but not those that were ordered out.
    std::vector<std::shared_ptr<TabHost>> visible() const;
    /// The visible host that was used last, or null.
    std::shared_ptr<TabHost> front() const;
    /// Brings all visible hosts to the front, including minimized hosts, in the order of their last use.
    void bringAllToFront() const;

    std::vector<std::shared_ptr<Window>> windows() const override;
    std::shared_ptr<Window> mainWindow() const override;

private:
    /// The only strong references to the hosts.
    std::vector<std::shared_ptr<TabHost>> hosts_;
};

} // namespace Platform
