#include "Tests/Support/linux/Xdotool.h"

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>

namespace TestSupport {

void runProgram(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const auto& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    argv.push_back(nullptr);
    g_autoptr(GError) error = nullptr;
    const auto tool = Platform::GObjectPtr<GSubprocess>::adopt(
        g_subprocess_newv(argv.data(), G_SUBPROCESS_FLAGS_NONE, &error));
    if (!tool) {
        throw std::runtime_error(error->message);
    }
    bool ended = false;
    g_subprocess_wait_async(
        tool.get(), nullptr,
        [](GObject* process, GAsyncResult* result, gpointer data) {
            g_subprocess_wait_finish(G_SUBPROCESS(process), result, nullptr);
            *static_cast<bool*>(data) = true;
        },
        &ended);
    EXPECT_TRUE(runUntil([&] { return ended; }));
    EXPECT_EQ(g_subprocess_get_exit_status(tool.get()), 0) << testing::PrintToString(arguments);
}

void runXdotool(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{"xdotool"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    runProgram(words);
}

std::vector<std::string> askXdotool(const std::string& arguments) {
    const std::unique_ptr<FILE, int (*)(FILE*)> answer(
        popen(("xdotool " + arguments + " 2>/dev/null").c_str(), "r"), &pclose);
    if (!answer) {
        throw std::runtime_error("xdotool does not start");
    }
    std::string text;
    std::array<char, 4096> bytes{};
    while (const auto size = fread(bytes.data(), 1, bytes.size(), answer.get())) {
        text.append(bytes.data(), size);
    }
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = text.find('\n', begin);
        lines.push_back(text.substr(begin, end - begin));
        begin = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

bool waitForFocus(const std::string& title) {
    // The window manager gives the focus to the window, and GTK passes it on to a child window. Wait for the
    // child window, because keys that are pressed earlier are lost.
    return eventually([&] {
        return askXdotool("getwindowfocus getwindowname") == std::vector{title} &&
               askXdotool("getwindowfocus") != askXdotool("getwindowfocus -f");
    });
}

} // namespace TestSupport
