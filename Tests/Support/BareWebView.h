#pragma once

#include <memory>
#include <string>

namespace TestSupport {

/// The web engine in a plain window of the toolkit, with nothing of ours around it and a store of its own in
/// memory: what the program is measured beside. Gone from the screen with the object. Main thread only.
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
