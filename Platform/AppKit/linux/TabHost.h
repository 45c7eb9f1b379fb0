#pragma once

#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/MenuBar.h"
#include "Platform/AppKit/linux/ReturnedKeys.h"

#include <adwaita.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Platform {

/// A native top-level window: the menu bar, the tab strip, and the pages of the windows that share it. It is
/// released after its last page has been removed.
class TabHost : public std::enable_shared_from_this<TabHost> {
public:
    static std::shared_ptr<TabHost> create();

    /// Returns the host that currently contains the window's page, or null.
    static std::shared_ptr<TabHost> of(Window& window);

    TabHost(const TabHost&) = delete;
    TabHost& operator=(const TabHost&) = delete;
    ~TabHost();

    GtkWindow* toplevel() const { return GTK_WINDOW(toplevel_.get()); }
    AdwTabView* tabView() const { return tabView_; }
    MenuBar* menuBar() const { return menuBar_.get(); }

    /// Adds the window's page after that of `neighbour`, or at the end if `neighbour` is null.
    void addPage(Window& window, Window* neighbour);
    void select(Window& window);
    void closePage(Window& window);
    void updateTitle(Window& window);
    void setNeedsAttention(Window& window, bool needs);

    std::shared_ptr<Window> selectedWindow() const;
    std::vector<std::shared_ptr<Window>> windows() const;

    void selectNeighbour(int step);
    void present();
    /// Hides the top-level window and keeps its pages.
    void orderOut();

    /// Restores the frame that is saved under `window`'s autosave name, or sets one that fits `window`'s
    /// content size. Also applies the window's style. Call it before the top-level window is first presented.
    void setFrame(const Window& window);

    /// A number that orders hosts by their last use. The host that was used last has the greatest number.
    std::uint64_t lastUse() const { return lastUse_; }

protected:
    TabHost();

private:
    void connect();
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

    GObjectPtr<GtkWidget> toplevel_;
    ReturnedKeys returnedKeys_;
    AdwTabView* tabView_ = nullptr; // owned by `toplevel_`
    std::unique_ptr<MenuBar> menuBar_;
    std::uint64_t lastUse_ = 0;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
