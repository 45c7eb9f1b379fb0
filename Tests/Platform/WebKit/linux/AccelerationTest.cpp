#include "Platform/AppKit/linux/Acceleration.h"

#include "Tests/Support/Display.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>

using namespace Platform;

namespace {

class Acceleration : public testing::Test {
protected:
    Acceleration() {
        std::filesystem::create_directories(devices);
        for (const char* name : variables) {
            g_unsetenv(name);
        }
    }

    void addDevice(const std::string& name) { std::ofstream(devices / name).flush(); }

    static std::string variable(const char* name) {
        const char* value = g_getenv(name);
        return value ? value : "unset";
    }

    /// Returns true if an environment variable disables OpenGL in GTK.
    static bool isOpenGLDisabled() {
        return variable("GDK_DISABLE") == "gl,vulkan" || variable("GDK_DEBUG") == "gl-disable";
    }

    static constexpr std::array<const char*, 4> variables = {"GSK_RENDERER", "WEBKIT_DISABLE_DMABUF_RENDERER",
                                                             "GDK_DEBUG", "GDK_DISABLE"};
    const std::filesystem::path devices =
        TestSupport::sessionDirectory() / testing::UnitTest::GetInstance()->current_test_info()->name();
};

} // namespace

TEST_F(Acceleration, isTurnedOffWithoutARenderNode) {
    addDevice("card0");
    EXPECT_FALSE(hasRenderNode(devices));
    chooseAcceleration(devices);
    EXPECT_EQ(variable("GSK_RENDERER"), "cairo");
    EXPECT_EQ(variable("WEBKIT_DISABLE_DMABUF_RENDERER"), "1");
    EXPECT_TRUE(isOpenGLDisabled());
}

TEST_F(Acceleration, isTurnedOffWithoutAnyDevice) {
    EXPECT_FALSE(hasRenderNode(devices / "missing"));
    chooseAcceleration(devices / "missing");
    EXPECT_EQ(variable("GSK_RENDERER"), "cairo");
}

TEST_F(Acceleration, staysAsItIsWithARenderNode) {
    addDevice("card0");
    addDevice("renderD128");
    EXPECT_TRUE(hasRenderNode(devices));
    chooseAcceleration(devices);
    EXPECT_EQ(variable("GSK_RENDERER"), "unset");
    EXPECT_EQ(variable("WEBKIT_DISABLE_DMABUF_RENDERER"), "unset");
    EXPECT_FALSE(isOpenGLDisabled());
}

TEST_F(Acceleration, isTheUsersChoiceFirst) {
    g_setenv("GSK_RENDERER", "gl", TRUE);
    chooseAcceleration(devices);
    EXPECT_EQ(variable("GSK_RENDERER"), "gl");
    EXPECT_EQ(variable("WEBKIT_DISABLE_DMABUF_RENDERER"), "1");
}
