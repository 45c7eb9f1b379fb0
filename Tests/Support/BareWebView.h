#pragma once

#include <memory>
#include <string>

namespace TestSupport {

/// A native web view in a plain native window, without any class of Platform and with an ephemeral data store
/// of its own: the baseline with which the program is compared. The destructor closes the window. Main thread
/// only.
class BareWebView {
public:
    /// The content's size in points.
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
