#pragma once

#include "Platform/Foundation/Timer.h"

#include <glib.h>

#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// A top-level window's size while it is not maximized, in logical pixels, and its maximized state.
struct SavedFrame {
    int width = 0;
    int height = 0;
    bool isMaximized = false;

    friend bool operator==(const SavedFrame&, const SavedFrame&) = default;
};

/// Window frames that are saved between runs, identified by their autosave names. Main thread only.
///
/// The frames are stored in a file in the application's folder in `stateDirectory`. The file is read once,
/// and rewritten shortly after the last of several changes. A file that cannot be read or parsed is ignored.
/// If writing fails, the error is logged, and the next change causes another attempt.
class SavedFrames {
public:
    explicit SavedFrames(std::string stateDirectory);
    SavedFrames(const SavedFrames&) = delete;
    SavedFrames& operator=(const SavedFrames&) = delete;
    /// Writes changes that have not been saved yet.
    ~SavedFrames();

    std::optional<SavedFrame> frame(const std::string& name) const;
    void setFrame(const std::string& name, const SavedFrame& frame);

    /// Writes the file immediately if there are unsaved changes.
    void save();

private:
    void read();

    struct Free {
        void operator()(GKeyFile* file) const { g_key_file_unref(file); }
    };

    std::string stateDirectory_;
    std::unique_ptr<GKeyFile, Free> frames_;
    bool isChanged_ = false;
    std::shared_ptr<Timer> saving_;
};

} // namespace Platform
