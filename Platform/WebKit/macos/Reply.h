#pragma once

#include "Platform/AppKit/MainThread.h"

#include <functional>
#include <tuple>
#include <utility>

namespace Platform {

/// The answer that WebKit waits for behind one of its questions. It stops the process where none comes or two
/// do: here the first one counts, and without one destruction gives the safe one. Main thread only.
template <typename... Answer>
class Reply {
public:
    explicit Reply(std::function<void(Answer...)> handler, Answer... safeAnswer)
        : handler_(std::move(handler))
        , safeAnswer_(safeAnswer...) {}
    Reply(const Reply&) = delete;
    Reply& operator=(const Reply&) = delete;
    ~Reply() { std::apply(*this, safeAnswer_); }

    void operator()(Answer... answer) {
        assertMainThread("Reply");
        if (const auto handler = std::exchange(handler_, nullptr)) {
            handler(answer...);
        }
    }

private:
    std::function<void(Answer...)> handler_;
    std::tuple<Answer...> safeAnswer_;
};

} // namespace Platform
