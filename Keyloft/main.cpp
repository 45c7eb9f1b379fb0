#include "Keyloft/AppDelegate.h"
#include "Keyloft/CommandLine.h"
#include "Keyloft/Program.h"
#include "Platform/AppKit/Application.h"

#include <cstddef>
#include <memory>
#include <span>

namespace {

// Keeps the delegate alive. The application holds only a weak reference to it.
std::shared_ptr<Keyloft::AppDelegate> delegate;

} // namespace

int main(int argc, char** argv) {
    const std::span<char* const> arguments(argv, static_cast<std::size_t>(argc));
    if (const auto status = Keyloft::answerOption(arguments.subspan(arguments.empty() ? 0 : 1))) {
        return *status;
    }
    Platform::setProgramInfo(Keyloft::program());
    auto& application = Platform::Application::shared();
    delegate = Keyloft::AppDelegate::create();
    application.setDelegate(delegate);
    application.setActivationPolicy(Platform::Application::ActivationPolicy::regular);
    const int status = application.run(argc, argv);
    // Destroy the windows and pages while the application object still exists. Static destructors would
    // destroy them after the application object.
    delegate.reset();
    return status;
}
