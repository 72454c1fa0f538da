// What a person reads of a frame: the trace of the renderer without a device.

#include "ViewerProgram.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace
{

/// The lines of the engine's trace; the viewer's own lines stand between them.
std::string traceOf(const std::string& text)
{
    std::istringstream lines(text);
    std::string trace;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.rfind("renderengine::", 0) == 0)
        {
            if (line.back() == '\r')
            {
                line.pop_back();
            }
            trace += line + "\n";
        }
    }
    return trace;
}

const char* const c_trace =
    "renderengine::RendererLog::RendererLog debug = false \n"
    "renderengine::TextureLog::create id = 0 size = 64 32 1 \n"
    "renderengine::TextureLog::create id = 1 size = 64 32 1 \n"
    "renderengine::TextureLog::create id = 2 size = 64 32 1 \n"
    "renderengine::TextureLog::create id = 3 size = 211 211 1 \n"
    "renderengine::RendererLog::begin \n"
    "renderengine::VertexBufferLog::create id = 0 name = position \n"
    "renderengine::VertexBufferLog::create id = 1 name = normal \n"
    "renderengine::VertexBufferLog::create id = 2 name = texCoord \n"
    "renderengine::IndexBufferLog::create id = 0 \n"
    "renderengine::RenderTargetLog::create id = 0 attachments = 0 1 \n"
    "renderengine::RenderTargetLog::create id = 1 attachment = 2 \n"
    "renderengine::ViewportLog::create id = 0 size = 0 0 64 32 \n"
    "renderengine::SamplerLog::create id = 0 minFilter =  2 magFilter =  2 \n"
    "renderengine::DrawLog::create id = 0 RenderTarget = 0 Viewport = 0 DepthTest = true StencilTest = false \n"
    "renderengine::DrawPropertiesLog::create id = 0 vertexBuffers = 0 1 2  \n"
    "renderengine::DrawLog::addDrawProperties id = 0 DrawProperties = 0 \n"
    "renderengine::RendererLog::execute CommandGenerateMipmap textureID = 3 \n"
    "renderengine::RendererLog::execute CommandClearRT target = 0 flags = 7 \n"
    "renderengine::RendererLog::execute CommandRender drawID = 0 \n"
    "renderengine::RendererLog::finish \n"
    "renderengine::RendererLog::finishFrame \n"
    "renderengine::RendererLog::begin \n"
    "renderengine::RendererLog::execute CommandClearRT target = 0 flags = 7 \n"
    "renderengine::RendererLog::execute CommandRender drawID = 0 \n"
    "renderengine::RendererLog::finish \n"
    "renderengine::RendererLog::finishFrame \n"
    "renderengine::RendererLog::~RendererLog \n";

class ViewerTraceDeviceTest : public testing::Test
{
protected:
    static void expectTrace(std::vector<std::string> arguments)
    {
        const ScratchFolder folder;
        arguments.insert(arguments.begin(),
                         {testModel(boxModel), "--renderer", "LOG", "--size", "64x32", "--frames", "2"});
        const ViewerRun run = runViewer(folder, arguments);
        EXPECT_EQ(run.exitCode, 0) << run.error;
        EXPECT_EQ(traceOf(run.out), c_trace);
    }
};

} // namespace

TEST_F(ViewerTraceDeviceTest, TwoFramesOfABoxReadFromTheTraceOfTheRenderThread)
{
    expectTrace({});
}

TEST_F(ViewerTraceDeviceTest, AndAlikeFromThatOfTheCallingThread)
{
    expectTrace({"--no-thread"});
}
