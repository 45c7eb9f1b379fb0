#include "Keyloft/AppDelegate.h"
#include "Platform/AppKit/Application.h"

#include <memory>

namespace {

// The application holds its delegate weakly.
std::shared_ptr<Keyloft::AppDelegate> delegate;

} // namespace

int main(int argc, char** argv) {
    auto& application = Platform::Application::shared();
    delegate = Keyloft::AppDelegate::create();
    application.setDelegate(delegate);
    application.setActivationPolicy(Platform::Application::ActivationPolicy::regular);
    const int status = application.run(argc, argv);
    // Windows and pages end while the system underneath them still stands.
    delegate.reset();
    return status;
}
