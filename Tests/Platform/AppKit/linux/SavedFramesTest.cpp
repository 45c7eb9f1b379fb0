#include "Platform/AppKit/linux/SavedFrames.h"

#include "Platform/AppKit/ProgramInfo.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Platform::Tests {

using TestSupport::namesIn;
using TestSupport::runUntil;
using TestSupport::writeContents;

namespace fs = std::filesystem;

namespace {

class SavedFramesTest : public testing::Test {
protected:
    static constexpr const char* name = "Some Window";
    static constexpr SavedFrame frame{.width = 800, .height = 600, .isMaximized = true};

    /// Returns the saved frames as the next run of the program would load them.
    SavedFrames nextRun() const { return SavedFrames(directory.path().string()); }

    void writeFile(const std::string& text) const {
        fs::create_directories(folder);
        writeContents(file, text);
    }

    TestSupport::TemporaryDirectory directory;
    fs::path folder = directory.path() / programInfo().identifier;
    fs::path file = folder / "window-frames";
};

} // namespace

TEST_F(SavedFramesTest, knowsNothingAtFirstAndMakesNothing) {
    EXPECT_EQ(nextRun().frame(name), std::nullopt);
    EXPECT_TRUE(namesIn(directory.path()).empty());
}

TEST_F(SavedFramesTest, keepsFramesByTheirNames) {
    {
        SavedFrames frames(directory.path().string());
        frames.setFrame(name, frame);
        frames.setFrame("Other", {.width = 500, .height = 400, .isMaximized = false});
        EXPECT_EQ(frames.frame(name), frame);
        frames.save();
    }
    EXPECT_EQ(nextRun().frame(name), frame);
    EXPECT_EQ(nextRun().frame("Other"), (SavedFrame{.width = 500, .height = 400, .isMaximized = false}));
    EXPECT_EQ(nextRun().frame("Third"), std::nullopt);
}

TEST_F(SavedFramesTest, writesOnceTheFrameRests) {
    SavedFrames frames(directory.path().string());
    for (int step = 1; step <= 50; ++step) {
        frames.setFrame(name, {.width = 800 + step, .height = 600});
    }
    EXPECT_FALSE(fs::exists(file));
    ASSERT_TRUE(runUntil([&] { return fs::exists(file); }));
    EXPECT_EQ(nextRun().frame(name), (SavedFrame{.width = 850, .height = 600}));
}

TEST_F(SavedFramesTest, writesWhatWaitsWhenItGoes) {
    SavedFrames(directory.path().string()).setFrame(name, frame);
    EXPECT_EQ(nextRun().frame(name), frame);
}

TEST_F(SavedFramesTest, writesOnlyWhatChanged) {
    SavedFrames frames(directory.path().string());
    frames.setFrame(name, frame);
    frames.save();
    fs::remove(file);
    frames.setFrame(name, frame);
    frames.save();
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(SavedFramesTest, onlyTheUserMayEnterItsFolder) {
    fs::create_directory(folder);
    fs::permissions(folder, fs::perms(0755));
    SavedFrames(directory.path().string()).setFrame(name, frame);
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    EXPECT_EQ(namesIn(folder), std::set<std::string>{"window-frames"});
}

TEST_F(SavedFramesTest, makesTheStateDirectoryToo) {
    const auto state = directory.path() / "not" / "yet";
    SavedFrames(state.string()).setFrame(name, frame);
    EXPECT_EQ(SavedFrames(state.string()).frame(name), frame);
}

TEST_F(SavedFramesTest, aFileThatMakesNoSenseIsNone) {
    const std::string garbage[] = {
        "",
        "garbage",
        std::string("\0\xff\xfe[Some Window]\n", 17),
        "[Some Window",
        "[Some Window]\n",
        "[Some Window]\nwidth=800\n",
        "[Some Window]\nheight=600\nmaximized=true\n",
        "[Some Window]\nwidth=0\nheight=600\n",
        "[Some Window]\nwidth=-800\nheight=600\n",
        "[Some Window]\nwidth=wide\nheight=600\n",
        "[Some Window]\nwidth=800x\nheight=600\n",
        "[Some Window]\nwidth=99999999999999999999\nheight=600\n",
        "[Other]\nwidth=800\nheight=600\n",
        "[Some Window]\nwidth=800\nheight=600\n" + std::string(70000, '#'),
    };
    for (const auto& text : garbage) {
        writeFile(text);
        EXPECT_EQ(nextRun().frame(name), std::nullopt) << text.substr(0, 60);
    }
    // Saving a frame replaces a file with invalid contents.
    SavedFrames(directory.path().string()).setFrame(name, frame);
    EXPECT_EQ(nextRun().frame(name), frame);
}

TEST_F(SavedFramesTest, anUnknownStateIsNotMaximised) {
    writeFile("[Some Window]\nwidth=800\nheight=600\nmaximized=perhaps\n");
    EXPECT_EQ(nextRun().frame(name), (SavedFrame{.width = 800, .height = 600}));
}

TEST_F(SavedFramesTest, aFailedWriteIsLoggedAndLosesNothing) {
    struct Failure {
        const char* what;
        fs::path inTheWay;
        bool asFolder;
        const char* message;
    };
    for (const Failure& failure :
         {Failure{"a file where the folder belongs", folder, false, "Nothing is saved there."},
          Failure{"a folder where the file belongs", file, true, "The size of the window was not saved: "}}) {
        SCOPED_TRACE(failure.what);
        fs::remove_all(folder);
        if (failure.asFolder) {
            fs::create_directories(failure.inTheWay / "full");
        } else {
            writeContents(failure.inTheWay, "in the way");
        }

        SavedFrames frames(directory.path().string());
        frames.setFrame(name, frame);
        testing::internal::CaptureStderr();
        frames.save();
        const auto log = testing::internal::GetCapturedStderr();
        EXPECT_NE(log.find(failure.message), std::string::npos) << log;
        EXPECT_NE(log.find(folder.string()), std::string::npos) << log;
        EXPECT_EQ(frames.frame(name), frame);

        fs::remove_all(failure.inTheWay);
        frames.save();
        EXPECT_EQ(nextRun().frame(name), frame);
    }
}

} // namespace Platform::Tests
