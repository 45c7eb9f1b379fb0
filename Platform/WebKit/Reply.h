#pragma once

#include "Platform/AppKit/MainThread.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace Platform {

/// A reply that WebKit may still be waiting for.
class PendingReply {
public:
    PendingReply() = default;
    PendingReply(const PendingReply&) = delete;
    PendingReply& operator=(const PendingReply&) = delete;
    virtual ~PendingReply() = default;

    virtual bool isAnswered() const = 0;
    /// Sends the safe default, unless the reply has already been sent.
    virtual void answerSafely() = 0;
};

/// Replies to a request from WebKit once. If no answer is given, the destructor sends a safe default.
template <typename... Answer>
class Reply final : public PendingReply {
public:
    explicit Reply(std::function<void(Answer...)> handler, Answer... safeAnswer)
        : handler_(std::move(handler))
        , safeAnswer_(safeAnswer...) {}
    Reply(const Reply&) = delete;
    Reply& operator=(const Reply&) = delete;
    ~Reply() override { answerSafely(); }

    void operator()(Answer... answer) {
        assertMainThread("Reply");
        if (const auto handler = std::exchange(handler_, nullptr)) {
            handler(answer...);
        }
    }

    bool isAnswered() const override { return !handler_; }
    void answerSafely() final { std::apply(*this, safeAnswer_); }

private:
    std::function<void(Answer...)> handler_;
    std::tuple<Answer...> safeAnswer_;
};

/// The pending replies of one page, so that all of them can be answered when its web process terminates or
/// its view is destroyed. Main thread only.
class PendingReplies {
public:
    /// Adds a weak reference to `reply`, which is owned by the completion handler passed to the delegate.
    void add(const std::weak_ptr<PendingReply>& reply) {
        std::erase_if(replies_, [](const auto& other) { return !isOpen(other); });
        replies_.push_back(reply);
    }

    bool areOpen() const { return std::ranges::any_of(replies_, isOpen); }

    /// Completes each pending reply with its safe default.
    void answerAllSafely() {
        for (const auto& weak : std::exchange(replies_, {})) {
            if (const auto reply = weak.lock()) {
                reply->answerSafely();
            }
        }
    }

private:
    static bool isOpen(const std::weak_ptr<PendingReply>& weak) {
        const auto reply = weak.lock();
        return reply && !reply->isAnswered();
    }

    std::vector<std::weak_ptr<PendingReply>> replies_;
};

} // namespace Platform
