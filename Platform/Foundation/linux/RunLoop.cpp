#include "Platform/Foundation/RunLoop.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <utility>

namespace Platform {

namespace {

using Callback = std::function<void()>;

gboolean perform(gpointer callback) noexcept {
    (*static_cast<Callback*>(callback))();
    return G_SOURCE_REMOVE;
}

void release(gpointer callback) noexcept {
    const std::unique_ptr<Callback> released(static_cast<Callback*>(callback));
}

GMainLoop* innermostLoop = nullptr;

} // namespace

RunLoop& RunLoop::main() {
    static RunLoop loop;
    return loop;
}

void RunLoop::run() {
    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(g_main_loop_new(nullptr, FALSE),
                                                                        &g_main_loop_unref);
    GMainLoop* const outer = std::exchange(innermostLoop, loop.get());
    g_main_loop_run(loop.get());
    innermostLoop = outer;
}

void RunLoop::stop() {
    if (innermostLoop != nullptr) {
        g_main_loop_quit(innermostLoop);
    }
}

void RunLoop::perform(std::function<void()> callback) {
    g_idle_add_full(G_PRIORITY_DEFAULT, &Platform::perform,
                    std::make_unique<Callback>(std::move(callback)).release(), &release);
}

} // namespace Platform
