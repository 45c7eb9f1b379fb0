#pragma once

#include "Platform/Foundation/Timer.h"

#include <glib.h>

#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// A top-level's size, menu bar and tab strip included, as it is while not maximised. Logical pixels.
struct SavedFrame {
    int width = 0;
    int height = 0;
    bool isMaximized = false;

    friend bool operator==(const SavedFrame&, const SavedFrame&) = default;
};

/// The frames that windows keep from one run to the next, by their autosave names. Main thread only.
///
/// They are in a file of the application's own folder in `stateDirectory`, read once and written whole, some
/// time after the last of several changes. A file that cannot be read or makes no sense counts as none. A
/// failure to write is logged; the frames stay known to this run, and the next change tries again.
class SavedFrames {
public:
    explicit SavedFrames(std::string stateDirectory);
    SavedFrames(const SavedFrames&) = delete;
    SavedFrames& operator=(const SavedFrames&) = delete;
    /// Writes what still waits.
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
