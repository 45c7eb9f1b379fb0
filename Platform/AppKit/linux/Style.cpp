#include "Platform/AppKit/linux/Style.h"

#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/Foundation/FatalError.h"

extern "C" {
#include <Resources.h>
}

#include <array>
#include <map>
#include <memory>
#include <utility>

namespace Platform {

namespace {

constexpr const char* rules = R"css(
.keyloft-accent { background-color: @accent_bg_color; }
button.keyloft-recessed { padding: 2px 8px; min-height: 20px; font-weight: normal; }
.keyloft-shade { background-color: alpha(black, 0.25); }
.keyloft-sheet {
  background-color: @popover_bg_color;
  color: @popover_fg_color;
  border-radius: 12px;
  padding: 24px;
  box-shadow: 0 2px 12px alpha(black, 0.35), 0 0 0 1px alpha(black, 0.15);
}
.keyloft-sheet > scrolledwindow:focus-visible { outline: 2px solid @accent_color; outline-offset: 2px; }
)css";

constexpr std::array<std::pair<const char*, const char*>, 6> icons = {{
    {"chevron.left", "go-previous-symbolic"},
    {"chevron.right", "go-next-symbolic"},
    {"arrow.clockwise", "view-refresh-symbolic"},
    {"xmark", "process-stop-symbolic"},
    {"bookmark", "keyloft-bookmark-symbolic"},
    {"bookmark.fill", "keyloft-bookmark-filled-symbolic"},
}};

} // namespace

void installStyle() {
    keyloft_register_resource();
    gtk_icon_theme_add_resource_path(gtk_icon_theme_get_for_display(gdk_display_get_default()),
                                     "/velde/orvane/keyloft/icons");
    gtk_window_set_default_icon_name(programInfo().identifier.c_str());

    const auto provider = GObjectPtr<GtkCssProvider>::adopt(gtk_css_provider_new());
    gtk_css_provider_load_from_data(provider.get(), rules, -1);
    gtk_style_context_add_provider_for_display(gdk_display_get_default(), GTK_STYLE_PROVIDER(provider.get()),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

const char* iconName(const std::string& symbolName) {
    for (const auto& [symbol, icon] : icons) {
        if (symbolName == symbol) {
            return icon;
        }
    }
    fatalError("there is no icon for the symbol \"" + symbolName + '"');
}

PangoAttrList* fontAttributes(double points) {
    struct Unref {
        void operator()(PangoAttrList* list) const { pango_attr_list_unref(list); }
    };
    static std::map<double, std::unique_ptr<PangoAttrList, Unref>> lists;
    auto& list = lists[points];
    if (!list) {
        list.reset(pango_attr_list_new());
        // Pango multiplies points by the text scale. At a scale of 1, 72 points are 96 logical pixels.
        pango_attr_list_insert(list.get(),
                               pango_attr_size_new(static_cast<int>(points * 72 / 96 * PANGO_SCALE)));
    }
    return list.get();
}

std::string toolTipText(const std::string& text) {
    constexpr glong kept = 400; // characters at each end
    const glong length = g_utf8_strlen(text.c_str(), -1);
    if (length <= 2 * kept) {
        return text;
    }
    const char* begin = text.c_str();
    const auto offset = [begin](glong characters) {
        return static_cast<std::size_t>(g_utf8_offset_to_pointer(begin, characters) - begin);
    };
    return text.substr(0, offset(kept)) + "…" + text.substr(offset(length - kept));
}

} // namespace Platform
