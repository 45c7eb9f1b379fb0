#include "Platform/WebKit/macos/Conversions.h"

#include "Platform/Foundation/macos/Conversions.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace Platform {

namespace {

std::optional<std::string> bytesOf(NSData* data) {
    if (data == nil) {
        return std::nullopt;
    }
    return std::string(static_cast<const char*>(data.bytes), data.length);
}

NavigationType fromWKNavigationType(WKNavigationType type) {
    switch (type) {
    case WKNavigationTypeLinkActivated:
        return NavigationType::linkActivated;
    case WKNavigationTypeFormSubmitted:
        return NavigationType::formSubmitted;
    case WKNavigationTypeBackForward:
        return NavigationType::backForward;
    case WKNavigationTypeReload:
        return NavigationType::reload;
    case WKNavigationTypeFormResubmitted:
        return NavigationType::formResubmitted;
    case WKNavigationTypeOther:
        break;
    }
    return NavigationType::other;
}

class NativeInputStream final : public InputStream {
public:
    explicit NativeInputStream(NSInputStream* stream)
        : stream_(stream) {}

    void open() override { [stream_ open]; }
    bool hasBytesAvailable() override { return stream_.hasBytesAvailable; }
    std::ptrdiff_t read(std::span<char> buffer) override {
        return [stream_ read:reinterpret_cast<std::uint8_t*>(buffer.data()) maxLength:buffer.size()];
    }
    void close() override { [stream_ close]; }

private:
    NSInputStream* stream_;
};

/// Returns null if `stream` is nil.
std::shared_ptr<InputStream> fromNSInputStream(NSInputStream* stream) {
    return stream == nil ? nullptr : std::make_shared<NativeInputStream>(stream);
}

} // namespace

NSURLRequest* toNSURLRequest(const URLRequest& request) {
    NSURL* const url = toNSURL(request.url);
    return url == nil ? nil
                      : [NSURLRequest requestWithURL:url
                                         cachePolicy:NSURLRequestUseProtocolCachePolicy
                                     timeoutInterval:request.timeoutInterval];
}

NavigationAction fromWKNavigationAction(WKNavigationAction* action) {
    NSURLRequest* const request = action.request;
    NSString* const method = request.HTTPMethod;
    return {
        .url = fromNSURL(request.URL),
        .method = method != nil ? std::optional(fromNSString(method)) : std::nullopt,
        .body = bytesOf(request.HTTPBody),
        .bodyStream = fromNSInputStream(request.HTTPBodyStream),
        .navigationType = fromWKNavigationType(action.navigationType),
    };
}

FrameInfo fromWKFrameInfo(WKFrameInfo* frame) { return {.url = fromNSURL(frame.request.URL)}; }

} // namespace Platform
