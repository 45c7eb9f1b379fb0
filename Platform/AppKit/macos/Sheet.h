#pragma once

#include "Platform/AppKit/Alert.h"

#import <AppKit/AppKit.h>

#include <cstddef>

namespace Platform {

/// An alert on its way over a window. Its completion is called once, whatever becomes of the window.
class Sheet {
public:
    Sheet(const Alert& alert, Alert::Completion completion);
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;
    ~Sheet() { answerSafely(); }

    NSAlert* _Nonnull alert() const { return alert_; }

    /// The user's answer.
    void answer(NSModalResponse response);
    /// The answer of a window that closes. Does nothing where there was an answer.
    void answerSafely();

private:
    void complete(std::size_t button);

    NSAlert* __strong _Nonnull const alert_;
    std::size_t safeButton_;
    Alert::Completion completion_;
};

} // namespace Platform
