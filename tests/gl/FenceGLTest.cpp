#include "gl/FenceGL.h"

#include "GLRecordingFixture.h"

#include <thread>

namespace renderengine
{

namespace
{

// A client wait that fails twice and is then satisfied. A plain function, as the table asks for one.
int s_failuresLeft = 0;

GLenum GLAPIENTRY failingClientWait(GLsync sync, GLbitfield flags, GLuint64 timeout)
{
    const GLenum status = glbinding::RecordingGL::table()->kvr_common__glewClientWaitSync(sync, flags, timeout);
    return s_failuresLeft-- > 0 ? GLenum{GL_WAIT_FAILED} : status;
}

} // namespace

using FenceGLTest = GLRecordingTest;

TEST_F(FenceGLTest, InsertPutsASyncIntoTheStreamAndFlushes)
{
    FenceGL fence;
    EXPECT_FALSE(fence.holdsSync());
    fence.insert();
    EXPECT_TRUE(fence.holdsSync());
    EXPECT_EQ(gl.takeCalls(), (Texts{"glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0) -> 1", "glFlush()"}));
}

TEST_F(FenceGLTest, ASecondInsertDeletesTheFirstSync)
{
    FenceGL fence;
    fence.insert();
    gl.clear();
    fence.insert();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsSync(<sync 1>)", "glDeleteSync(<sync 1>)",
                                     "glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0) -> 2", "glFlush()"}));
}

TEST_F(FenceGLTest, AServerWaitReleasesTheSync)
{
    FenceGL fence(1);
    fence.insert();
    gl.clear();
    fence.wait();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsSync(<sync 1>)", "glWaitSync(<sync 1>, 0, 18446744073709551615)",
                                     "glIsSync(<sync 1>)", "glDeleteSync(<sync 1>)"}));
    EXPECT_FALSE(fence.holdsSync());
}

TEST_F(FenceGLTest, WaitOnAnEmptyFenceReportsOnceAndLeavesGLUntouched)
{
    FenceGL fence;
    fence.wait();
    EXPECT_EQ(log.take(), Texts{"error: [FenceGL] Fence creation failed"});
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(FenceGLTest, WaitAfterAFailedInsertReports)
{
    gl.fail("glFenceSync");
    FenceGL fence;
    fence.insert();
    fence.wait();
    EXPECT_EQ(log.take(), Texts{"error: [FenceGL] Fence creation failed"});
    EXPECT_FALSE(fence.holdsSync());
}

TEST_F(FenceGLTest, WaitOnASyncThatGLDoesNotKnowReportsAndKeepsIt)
{
    FenceGL fence;
    fence.insert();
    gl.fail("glIsSync");
    gl.clear();
    fence.wait();
    EXPECT_EQ(log.take(), Texts{"error: [FenceGL] Fence creation failed"});
    EXPECT_EQ(gl.takeCalls(), Texts{"glIsSync(<sync 1>)"});
    EXPECT_TRUE(fence.holdsSync());
}

TEST_F(FenceGLTest, ReleaseKeepsASyncThatGLDoesNotKnow)
{
    FenceGL fence;
    fence.insert();
    gl.fail("glIsSync");
    fence.release();
    EXPECT_TRUE(fence.holdsSync());
    gl.succeed("glIsSync");
    fence.release();
    EXPECT_FALSE(fence.holdsSync());
    EXPECT_EQ(gl.liveObjects(), Texts{});
}

TEST_F(FenceGLTest, AClientWaitAsksForTheTimeoutOnceAndKeepsTheSync)
{
    gl.answer(GL_MAX_SERVER_WAIT_TIMEOUT, 5000);
    FenceGL fence(0);
    fence.insert();
    gl.clear();
    fence.wait();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsSync(<sync 1>)", "glGetInteger64v(GL_MAX_SERVER_WAIT_TIMEOUT, <pointer>)",
                                     "glClientWaitSync(<sync 1>, 0, 5000)"}));
    EXPECT_TRUE(fence.holdsSync());
    fence.wait();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsSync(<sync 1>)", "glClientWaitSync(<sync 1>, 0, 5000)"}));
}

TEST_F(FenceGLTest, AFailedClientWaitGoesOnLoopingWithTheFlushBit)
{
    gl.answer(GL_MAX_SERVER_WAIT_TIMEOUT, 5000);
    GLEWContextStruct table = *glbinding::RecordingGL::table();
    table.kvr_common__glewClientWaitSync = failingClientWait;
    const glbinding::ScopedTable scope(&table);
    s_failuresLeft = 2;
    FenceGL fence(2);
    fence.insert();
    fence.wait();
    EXPECT_EQ(
        gl.callsMatching("glClientWaitSync"),
        (Texts{"glClientWaitSync(<sync 1>, 0, 5000)", "glClientWaitSync(<sync 1>, GL_SYNC_FLUSH_COMMANDS_BIT, 5000)",
               "glClientWaitSync(<sync 1>, GL_SYNC_FLUSH_COMMANDS_BIT, 5000)"}));
    EXPECT_TRUE(fence.holdsSync());
}

TEST_F(FenceGLTest, OneThreadInsertsWhileAnotherWaits)
{
    constexpr int rounds = 2000;
    FenceGL fence(1);
    gl.setRecording(false);
    std::thread inserter(
        [&]
        {
            const glbinding::RecordingGL::Attach attach(gl);
            for (int i = 0; i < rounds; ++i)
            {
                fence.insert();
            }
        });
    for (int i = 0; i < rounds; ++i)
    {
        fence.wait();
    }
    inserter.join();
    fence.release();
    EXPECT_EQ(gl.made("Sync"), static_cast<size_t>(rounds));
    EXPECT_EQ(gl.liveObjects(), Texts{});
    for (const std::string& line : log.take()) // a wait before an insert
    {
        EXPECT_EQ(line, "error: [FenceGL] Fence creation failed");
    }
}

} // namespace renderengine
