#include "GLDeviceTestSupport.h"

#include "gl/DebugGroup.h"
#include "gl/DebugOutputGL.h"
#include "gl/FenceGL.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

using FenceGLDeviceTest = ResourceDeviceTest;

TEST_F(FenceGLDeviceTest, AServerWaitReleasesTheSync)
{
    FenceGL fence(1);
    glClear(GL_COLOR_BUFFER_BIT);
    fence.insert();
    EXPECT_TRUE(fence.holdsSync());
    fence.wait();
    EXPECT_FALSE(fence.holdsSync());
    glFinish();
}

TEST_F(FenceGLDeviceTest, AClientWaitReturnsWithTheSyncKept)
{
    FenceGL fence(0);
    glClear(GL_COLOR_BUFFER_BIT);
    fence.insert();
    fence.wait();
    EXPECT_TRUE(fence.holdsSync());
    fence.wait();
    fence.release();
    EXPECT_FALSE(fence.holdsSync());
}

TEST_F(FenceGLDeviceTest, InsertReplacesTheSync)
{
    FenceGL fence(0);
    fence.insert();
    fence.insert();
    fence.wait();
    fence.release();
    fence.wait();
    EXPECT_EQ(log.take(), Texts{"error: [FenceGL] Fence creation failed"});
}

using DebugOutputGLDeviceTest = ResourceDeviceTest;

TEST_F(DebugOutputGLDeviceTest, AnErrorOfTheDriverBecomesOneLine)
{
    glDebugMessageCallback(debugOutputCallback, nullptr);
    glEnable(0xFFFF);
    glDebugMessageCallback(nullptr, nullptr);
    const Texts lines = log.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(": ERROR of HIGH severity, raised from API: "), std::string::npos) << lines[0];
    EXPECT_EQ(lines[0].rfind("error: ", 0), 0u);
}

TEST_F(DebugOutputGLDeviceTest, DebugGroupsAreAnnouncedWithTheirText)
{
    SoPreferences::setBool("KVR_RENDERENGINE_GLDEBUG_GROUP", true);
    // Notifications are off by default in some drivers.
    glDebugMessageControl(GL_DONT_CARE, GL_DONT_CARE, GL_DONT_CARE, 0, nullptr, GL_TRUE);
    glDebugMessageCallback(debugOutputCallback, nullptr);
    {
        RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "function label");
    }
    glDebugMessageCallback(nullptr, nullptr);
    const std::string line = "error: 1: UNKNOWN of NOTIFICATION severity, raised from THIRD PARTY: function label";
    EXPECT_EQ(log.take(), (Texts{line, line}));
}

} // namespace renderengine
