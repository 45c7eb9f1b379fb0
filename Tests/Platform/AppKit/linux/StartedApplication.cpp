#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/ProgramInfo.h"

#include <iostream>
#include <memory>
#include <vector>

namespace {

/// Writes a line to standard output for each delegate call and each URL. A "quit:" URL terminates the
/// program.
class Delegate : public Platform::ApplicationDelegate {
public:
    void applicationWillFinishLaunching() override {
        std::cout << "will finish launching" << '\n' << std::flush;
    }
    void applicationDidFinishLaunching() override {
        std::cout << "did finish launching" << '\n' << std::flush;
    }
    void applicationOpenURLs(const std::vector<Platform::URL>& urls) override {
        std::cout << "open " << urls.size() << '\n';
        for (const auto& url : urls) {
            std::cout << url.absoluteString() << '\n';
            if (url.scheme() == "quit") {
                Platform::Application::shared().terminate();
            }
        }
        std::cout.flush();
    }
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override {
        std::cout << "reopen " << hasVisibleWindows << '\n' << std::flush;
        return true;
    }
    bool applicationShouldTerminateAfterLastWindowClosed() override { return false; }
};

} // namespace

int main(int argc, char** argv) {
    const auto delegate = std::make_shared<Delegate>();
    Platform::setProgramInfo({.identifier = "velde.orvane.keyloft",
                              .name = "Keyloft",
                              .version = {},
                              .description = {},
                              .copyright = {}});
    auto& application = Platform::Application::shared();
    application.setDelegate(delegate);
    return application.run(argc, argv);
}
