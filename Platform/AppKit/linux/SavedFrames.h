#pragma once

#include "Platform/Foundation/Timer.h"

#include <glib.h>

#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// The size that a top-level has while it is not maximised, including menu bar and tab strip, in logical
/// pixels; and whether it is maximised.
struct SavedFrame {
    int width = 0;
    int height = 0;
    bool isMaximized = false;

    friend bool operator==(const SavedFrame&, const SavedFrame&) = default;
};

/// The frames of windows that are saved from one run to the next, by their autosave names. Main thread only.
///
/// The frames are in a file in the application's own folder in `stateDirectory`. The file is read once, and
/// rewritten a short time after the last of several changes. A file that cannot be read or parsed is ignored.
/// A failure to write is logged; the frames stay in memory, and the next change tries again.
class SavedFrames {
public:
    explicit SavedFrames(std::string stateDirectory);
    SavedFrames(const SavedFrames&) = delete;
    SavedFrames& operator=(const SavedFrames&) = delete;
    /// Writes changes that have not been saved yet.
    ~SavedFrames();

    std::optional<SavedFrame> frame(const std::string& name) const;
    void setFrame(const std::string& name, const SavedFrame& frame);

    /// Writes the file now if anything changed.
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
