#pragma once

#include "Platform/AppKit/MainThread.h"

#include <functional>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace Platform {

/// A question of a page that may still be open.
class PendingReply {
public:
    PendingReply() = default;
    PendingReply(const PendingReply&) = delete;
    PendingReply& operator=(const PendingReply&) = delete;
    virtual ~PendingReply() = default;

    /// Gives the safe answer. Does nothing after an answer.
    virtual void answerSafely() = 0;
};

/// The answer to one of WebKit's questions. WebKit stops the process if it gets no answer or two: the first
/// answer counts, and destruction without one gives the safe answer. Main thread only.
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

    void answerSafely() final { std::apply(*this, safeAnswer_); }

private:
    std::function<void(Answer...)> handler_;
    std::tuple<Answer...> safeAnswer_;
};

/// The open questions of one page, so that they can be answered when its process ends. Main thread only.
class PendingReplies {
public:
    /// Held weakly: whoever answers the question owns the reply.
    void add(const std::weak_ptr<PendingReply>& reply) {
        std::erase_if(replies_, [](const auto& other) { return other.expired(); });
        replies_.push_back(reply);
    }

    /// Gives each open question the safe answer.
    void answerAllSafely() {
        for (const auto& weak : std::exchange(replies_, {})) {
            if (const auto reply = weak.lock()) {
                reply->answerSafely();
            }
        }
    }

private:
    std::vector<std::weak_ptr<PendingReply>> replies_;
};

} // namespace Platform
