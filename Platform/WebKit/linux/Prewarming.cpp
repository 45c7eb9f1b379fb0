#include "Platform/WebKit/linux/Prewarming.h"

#include "Platform/Foundation/RunLoop.h"

#include <memory>
#include <utility>

namespace Platform {

Prewarming::Prewarming(GtkWidget* widget, std::function<void()> start)
    : start_(std::make_shared<std::function<void()>>(std::move(start)))
    , painted_(gtk_widget_get_frame_clock(widget), "after-paint",
               G_CALLBACK(+[](GdkFrameClock*, gpointer data) {
                   auto& prewarming = *static_cast<Prewarming*>(data);
                   prewarming.painted_.disconnect();
                   RunLoop::main().perform([weak = std::weak_ptr(prewarming.start_)] {
                       if (const auto start = weak.lock()) {
                           (*start)();
                       }
                   });
               }),
               this) {}

void startWebProcess(WebKitWebView* view, std::function<void()> started) {
    const auto answered = [](GObject*, GAsyncResult*, gpointer data) {
        const std::unique_ptr<std::function<void()>> callback(static_cast<std::function<void()>*>(data));
        (*callback)();
    };
    webkit_web_view_evaluate_javascript(
        view, "1", -1, nullptr, nullptr, nullptr, answered,
        std::make_unique<std::function<void()>>(std::move(started)).release());
}

} // namespace Platform
