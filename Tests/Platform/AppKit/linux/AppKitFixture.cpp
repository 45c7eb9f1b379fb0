#include "Tests/Platform/AppKit/linux/AppKitFixture.h"

#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Platform/Foundation/MakeShared.h"

namespace Platform::Tests {

std::shared_ptr<RecordingController> RecordingController::create(const std::string& title) {
    auto controller = makeShared<RecordingController>();
    const auto window = Window::create({.width = 600, .height = 400}, {});
    window->setTitle(title);
    controller->setWindow(window);
    window->setDelegate(std::static_pointer_cast<RecordingController>(controller));
    return controller;
}

AppKitTest::AppKitTest() {
    setProgramInfo({.identifier = "example.tests.appkit",
                    .name = "AppKit Tests",
                    .version = "1.2.3",
                    .description = "Tests of windows and controls",
                    .copyright = "Copyright of the tests"});
    Application::shared().prepare();
}

AppKitTest::~AppKitTest() {
    Application::shared().setMainMenu(nullptr);
    const auto hosts = Application::shared().native().hosts.all();
    for (const auto& host : hosts) {
        gtk_window_close(host->toplevel());
    }
    TestSupport::runPending();
}

void AppKitTest::show(const std::shared_ptr<Window>& window) {
    window->makeKeyAndOrderFront();
    ASSERT_TRUE(TestSupport::runUntil([&] {
        return window->isVisible() && window->contentView()->frame().width > 0;
    })) << window->title();
}

GtkWidget* AppKitTest::widgetOf(const std::shared_ptr<View>& view) {
    return view->nativeIfMade() ? view->nativeIfMade()->widget.get() : nullptr;
}

void AppKitTest::typeInto(const std::shared_ptr<TextField>& field, const std::string& text) {
    auto* editable = GTK_EDITABLE(widgetOf(field));
    int position = -1;
    gtk_editable_insert_text(editable, text.c_str(), -1, &position);
}

} // namespace Platform::Tests
