#include "gl/DebugGroup.h"

#include "GLRecordingFixture.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

namespace
{

void work()
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute CommandRender");
    glFlush();
}

void setGroups(bool on)
{
    SoPreferences::setBool("KVR_RENDERENGINE_GLDEBUG_GROUP", on);
}

} // namespace

/// Sites keep the setting for the life of the process, so each case needs a process of its own.
using DebugGroupTest = GLRecordingTest;

TEST_F(DebugGroupTest, IsOffByDefault)
{
    work();
    EXPECT_EQ(gl.takeCalls(), Texts{"glFlush()"});
}

TEST_F(DebugGroupTest, WrapsTheScope)
{
    setGroups(true);
    work();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glPushDebugGroup(GL_DEBUG_SOURCE_THIRD_PARTY, 1, 49, "
                                     "\"renderengine::RendererGL41::execute CommandRender\")",
                                     "glFlush()", "glPopDebugGroup()"}));
}

TEST_F(DebugGroupTest, AnEmptyLabelLeavesTheBlankAtTheEnd)
{
    setGroups(true);
    {
        RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::apply ");
    }
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 1, 29, \"renderengine::StateGL::apply \")",
                     "glPopDebugGroup()"}));
}

TEST_F(DebugGroupTest, EachSiteKeepsTheSettingOfItsFirstUse)
{
    setGroups(true);
    work();
    setGroups(false);
    gl.clear();
    work();
    EXPECT_EQ(gl.countOf("glPushDebugGroup"), 1u);
    EXPECT_EQ(gl.countOf("glPopDebugGroup"), 1u);
}

TEST_F(DebugGroupTest, OpenAndCloseOfASiteReadTheSettingSeparately)
{
    setGroups(true);
    {
        RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "function label");
        setGroups(false);
    }
    EXPECT_EQ(gl.countOf("glPushDebugGroup"), 1u);
    EXPECT_EQ(gl.countOf("glPopDebugGroup"), 0u);
}

} // namespace renderengine
