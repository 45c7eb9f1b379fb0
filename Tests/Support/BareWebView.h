#pragma once

#include <memory>
#include <string>

namespace TestSupport {

/// A native web view in a native window, created without using Platform's classes. Benchmarks use it as a
/// baseline. The view has its own ephemeral data store. The destructor closes the window. Main thread only.
class BareWebView {
public:
    /// Shows a window with a content area of the given size, in points.
    BareWebView(int width, int height);
    BareWebView(const BareWebView&) = delete;
    BareWebView& operator=(const BareWebView&) = delete;
    ~BareWebView();

    void load(const std::string& url);
    void loadHTMLString(const std::string& html, const std::string& baseURL);

private:
    struct Native;
    std::unique_ptr<Native> native_;
};

} // namespace TestSupport
