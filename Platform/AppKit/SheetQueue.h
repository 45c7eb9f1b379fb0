#pragma once

#include "Platform/AppKit/Alert.h"

#include <cstddef>
#include <deque>

namespace Platform {

/// Shows a window's sheets, one at a time.
class SheetPresenter {
public:
    virtual ~SheetPresenter() = default;

    /// Returns false if the window cannot show a sheet at the moment.
    virtual bool showSheet(const Alert& alert) = 0;
    virtual void hideSheet() = 0;
};

/// The unanswered alerts of one window, oldest first. The window shows the first alert. Main thread only.
class SheetQueue {
public:
    /// `presenter` must outlive the queue.
    explicit SheetQueue(SheetPresenter& presenter)
        : presenter_(presenter) {}

    bool isEmpty() const { return sheets_.empty(); }

    /// Adds an alert. Calls `completion`, which may be null, once with the index of the chosen button. If the
    /// queue is closed, calls it immediately with the index of the safe button.
    void add(const Alert& alert, Alert::Completion completion);
    /// Shows the first alert if it is not shown yet. Call it when the window becomes able to show a sheet.
    void showFirst();
    /// Hides the visible alert, if any, and shows the next alert. Then calls the hidden alert's completion.
    void answer(std::size_t button);
    /// Completes all alerts with their safe buttons, including alerts that are added later.
    void close();

private:
    struct Sheet {
        Alert alert;
        Alert::Completion completion;
    };

    SheetPresenter& presenter_;
    std::deque<Sheet> sheets_;
    bool isFirstShown_ = false;
    bool isClosed_ = false;
};

} // namespace Platform
