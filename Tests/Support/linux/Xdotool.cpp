#include "Tests/Support/linux/Xdotool.h"

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace TestSupport {

void runXdotool(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{"xdotool"};
    argv.reserve(arguments.size() + 2);
    for (const auto& argument : arguments)
        argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    g_autoptr(GError) error = nullptr;
    const auto tool = Platform::GObjectPtr<GSubprocess>::adopt(
        g_subprocess_newv(argv.data(), G_SUBPROCESS_FLAGS_NONE, &error));
    if (!tool)
        throw std::runtime_error(error->message);
    bool ended = false;
    g_subprocess_wait_async(
        tool.get(), nullptr,
        [](GObject* process, GAsyncResult* result, gpointer data) {
            g_subprocess_wait_finish(G_SUBPROCESS(process), result, nullptr);
            *static_cast<bool*>(data) = true;
        },
        &ended);
    EXPECT_TRUE(runUntil([&] { return ended; }));
    EXPECT_EQ(g_subprocess_get_exit_status(tool.get()), 0) << arguments.front();
}

} // namespace TestSupport
