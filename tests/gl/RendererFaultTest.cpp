// What a renderer does when the driver fails it: at most one line, no crash, and what comes next is drawn.

#include "RendererFixture.h"

#include <algorithm>

namespace renderengine
{
namespace
{

using RendererFaultTest = RendererGLTest;

bool draws(const Texts& calls)
{
    return std::any_of(calls.begin(), calls.end(),
                       [](const std::string& call) { return call.find("glDrawElements") == 0; });
}

TEST_F(RendererFaultTest, AFrameWithoutAFenceIsReportedAndTheNextOneIsWaitedFor)
{
    gl.fail("glFenceSync", 1);
    renderer->endFrame();
    renderer->execute();
    renderer->finishFrame();
    EXPECT_EQ(log.take(), Texts{"error: [FenceGL] Fence creation failed"});
    gl.clear();
    renderer->endFrame();
    renderer->execute();
    renderer->finishFrame();
    EXPECT_EQ(gl.countOf("glFenceSync("), 1u);
    EXPECT_EQ(gl.countOf("glWaitSync("), 1u);
}

TEST_F(RendererFaultTest, ObjectsWithoutNamesDoNotStopTheNextDraw)
{
    const Texts functions = {"glGenBuffers", "glGenTextures", "glGenFramebuffers", "glCreateProgram"};
    for (const std::string& function : functions)
    {
        gl.fail(function);
    }
    const Scene nameless = makeScene();
    drawCalls(nameless);
    for (const std::string& function : functions)
    {
        gl.succeed(function);
    }
    EXPECT_TRUE(draws(drawCalls(makeScene())));
    renderer->destroy();
}

TEST_F(RendererFaultTest, AProgramThatDidNotLinkReadsNoAttributeAndTheNextOneDoes)
{
    gl.fail("glLinkProgram");
    const Scene broken = makeScene();
    drawCalls(broken);
    gl.clear();
    run<CommandRender>(broken.draw);
    EXPECT_EQ(gl.countOf("glEnableVertexAttribArray("), 0u);
    gl.succeed("glLinkProgram");
    const Scene working = makeScene();
    gl.clear();
    run<CommandRender>(working.draw);
    EXPECT_EQ(gl.countOf("glEnableVertexAttribArray("), 1u);
    EXPECT_TRUE(draws(gl.takeCalls()));
}

} // namespace
} // namespace renderengine
