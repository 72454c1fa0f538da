#include "renderer/RecordingRenderer.h"
#include "renderer/Task.h"

#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <functional>

namespace renderengine
{
namespace
{

using testing::Lines;

/// Each wrapper, by the list in which its command waits and the number of the handle that it gives out.
class RecordingWrapperTest : public ::testing::Test
{
protected:
    /// What a recording leaves in the three lists: the resource list is flushed first, the head list runs ahead of the
    /// draw of a cache that is submitted behind the recording, and the tail list behind it.
    Lines lists(const std::function<void()>& record)
    {
        record();
        m_renderer.executeResourceCommands();
        m_trace.add("-");
        const auto cache = std::make_shared<RenderCache>();
        cache->endTransformFeedback();
        m_renderer.submit(cache);
        m_renderer.endFrame();
        m_renderer.execute();

        Lines lines;
        for (const std::string& line : m_trace.take())
        {
            if (line != "begin" && line != "finish")
            {
                lines.push_back(line == "CommandEndTransformFeedback" ? "-" : line);
            }
        }
        return lines;
    }

    testing::Trace m_trace;
    testing::RecordingRenderer m_renderer{m_trace};
};

TEST_F(RecordingWrapperTest, Draws)
{
    const Lines lines = lists(
        [this]
        {
            const DrawHandle draw = m_renderer.createDraw(nullptr, nullptr);
            EXPECT_EQ(draw, DrawHandle(0));
            m_renderer.destroyDraw(draw);
            m_renderer.updateDraw(draw, nullptr, nullptr);
        });
    EXPECT_EQ(lines, (Lines{"-", "CommandCreateDraw 0", "CommandUpdateDraw 0", "-", "CommandDestroyDraw 0"}));
}

TEST_F(RecordingWrapperTest, DrawProperties)
{
    const Lines lines = lists(
        [this]
        {
            const DrawPropertiesHandle handle = m_renderer.createDrawProperties(DrawProperties());
            EXPECT_EQ(handle, DrawPropertiesHandle(10));
            m_renderer.destroyDrawProperties(handle);
            m_renderer.updateDrawProperties(handle, DrawProperties());
            m_renderer.addDrawProperties(DrawHandle(1), handle);
            m_renderer.removeDrawProperties(DrawHandle(2), handle);
            m_renderer.removeAllDrawProperties(DrawHandle(3));
        });
    EXPECT_EQ(lines, (Lines{"-", "CommandCreateDrawProperties 10", "CommandUpdateDrawProperties 10",
                            "CommandAddDrawProperties 1", "CommandRemoveDrawProperties 2",
                            "CommandRemoveAllDrawProperties 3", "-", "CommandDestroyDrawProperties 10"}));
}

TEST_F(RecordingWrapperTest, Buffers)
{
    const Lines lines = lists(
        [this]
        {
            const BufferHandle handle = m_renderer.createBuffer(BufferProperties());
            EXPECT_EQ(handle, BufferHandle(20));
            m_renderer.destroyBuffer(handle);
            m_renderer.updateBuffer(handle, BufferProperties());
            m_renderer.resizeBuffer(handle, 4);
            m_renderer.mapBuffer(handle, 0, 4, 1);
            m_renderer.unmapBuffer(handle);
            m_renderer.copyBuffer(handle, handle, 0, 0, 4);
        });
    EXPECT_EQ(lines,
              (Lines{"CommandCreateBuffer 20", "CommandResizeBuffer 20", "CommandMapBuffer 20", "CommandUnmapBuffer 20",
                     "CommandCopyBuffer", "-", "CommandUpdateBuffer 20", "-", "CommandDestroyBuffer 20"}));
}

TEST_F(RecordingWrapperTest, ViewsOfBuffersAndTextures)
{
    const Lines lines = lists(
        [this]
        {
            m_renderer.destroyVertexBuffer(m_renderer.createVertexBuffer(VertexBufferProperties()));
            m_renderer.updateVertexBuffer(VertexBufferHandle(30), VertexBufferProperties());
            m_renderer.destroyIndexBuffer(m_renderer.createIndexBuffer(IndexBufferProperties()));
            m_renderer.updateIndexBuffer(IndexBufferHandle(40), IndexBufferProperties());
            m_renderer.destroyShaderBuffer(m_renderer.createShaderBuffer(ShaderBufferProperties()));
            m_renderer.updateShaderBuffer(ShaderBufferHandle(50), ShaderBufferProperties());
            m_renderer.destroyTextureImage(m_renderer.createTextureImage(TextureImageProperties()));
            m_renderer.updateTextureImage(TextureImageHandle(60), TextureImageProperties());
        });
    EXPECT_EQ(
        lines,
        (Lines{"CommandCreateVertexBuffer 30", "CommandCreateIndexBuffer 40", "CommandCreateShaderBuffer 50",
               "CommandCreateTextureImage 60", "-", "CommandUpdateVertexBuffer 30", "CommandUpdateIndexBuffer 40",
               "CommandUpdateShaderBuffer 50", "CommandUpdateTextureImage 60", "-", "CommandDestroyVertexBuffer 30",
               "CommandDestroyIndexBuffer 40", "CommandDestroyShaderBuffer 50", "CommandDestroyTextureImage 60"}));
}

TEST_F(RecordingWrapperTest, SamplersTargetsAndViewports)
{
    const Lines lines = lists(
        [this]
        {
            m_renderer.destroySampler(m_renderer.createSampler(SamplerProperties()));
            m_renderer.updateSampler(SamplerHandle(70), SamplerProperties());
            m_renderer.destroyRenderTarget(m_renderer.createRenderTarget(RenderTargetProperties()));
            m_renderer.updateRenderTarget(RenderTargetHandle(90), RenderTargetProperties());
            m_renderer.destroyViewport(m_renderer.createViewport(ViewportProperties()));
            m_renderer.updateViewport(ViewportHandle(100), ViewportProperties());
        });
    EXPECT_EQ(lines,
              (Lines{"-", "CommandCreateSampler 70", "CommandUpdateSampler 70", "CommandCreateRenderTarget 90",
                     "CommandUpdateRenderTarget 90", "CommandCreateViewport 100", "CommandUpdateViewport 100", "-",
                     "CommandDestroySampler 70", "CommandDestroyRenderTarget 90", "CommandDestroyViewport 100"}));
}

TEST_F(RecordingWrapperTest, Textures)
{
    const Lines lines = lists(
        [this]
        {
            const TextureHandle handle = m_renderer.createTexture(TextureProperties());
            EXPECT_EQ(handle, TextureHandle(80));
            m_renderer.destroyTexture(handle);
            m_renderer.resizeTexture(handle, 1, 2, 3);
            m_renderer.updateTexture(handle, TextureProperties());
            m_renderer.updateTextureBatchData(handle, TextureUpdateBatchDataProperties());
        });
    EXPECT_EQ(lines, (Lines{"CommandCreateTexture 80", "-", "CommandResizeTexture 80", "CommandUpdateTexture 80",
                            "CommandUpdateTextureBatchData 80", "-", "CommandDestroyTexture 80"}));
}

TEST_F(RecordingWrapperTest, Shaders)
{
    const Lines lines = lists(
        [this]
        {
            m_renderer.destroyShaderObject(m_renderer.createShaderObject(ShaderObjectProperties()));
            m_renderer.destroyShaderProgram(m_renderer.createShaderProgram(ShaderProgramProperties()));
        });
    EXPECT_EQ(lines, (Lines{"CommandCreateShaderObject 110", "CommandCreateShaderProgram 120", "-", "-",
                            "CommandDestroyShaderObject 110", "CommandDestroyShaderProgram 120"}));
}

TEST_F(RecordingWrapperTest, ShaderParametersOfAllRecords)
{
    Lines expected = {"-"};
    uint32_t id = 130;
#define RENDERENGINE_EXPECT(PROPERTIES)                                                        \
    expected.push_back("CommandCreateShaderParameter<" #PROPERTIES "> " + std::to_string(id)); \
    expected.push_back("CommandUpdateShaderParameter<" #PROPERTIES "> " + std::to_string(id++));
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_EXPECT)
#undef RENDERENGINE_EXPECT
    expected.push_back("-");
    expected.push_back("CommandDestroyShaderParameter 130");

    const Lines lines = lists(
        [this]
        {
            m_renderer.destroyShaderParameter(ShaderParameterHandle(130));
#define RENDERENGINE_RECORD(PROPERTIES) \
    m_renderer.updateShaderParameter(m_renderer.createShaderParameter(PROPERTIES()), PROPERTIES());
            RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_RECORD)
#undef RENDERENGINE_RECORD
        });
    EXPECT_EQ(lines, expected);
}

TEST_F(RecordingWrapperTest, Queries)
{
    const Lines lines = lists(
        [this]
        {
            const QueryHandle handle = m_renderer.createQuery(3);
            EXPECT_EQ(handle, QueryHandle(140));
            m_renderer.destroyQuery(handle);
        });
    EXPECT_EQ(lines, (Lines{"-", "CommandCreateQuery 140", "-", "CommandDestroyQuery 140"}));
}

TEST_F(RecordingWrapperTest, Tasks)
{
    const Lines lines = lists(
        [this]
        {
            m_renderer.addEndTask(testing::makeTask([this] { m_trace.add("end task"); }));
            m_renderer.addTask(testing::makeTask([this] { m_trace.add("task"); }));
        });
    EXPECT_EQ(lines, (Lines{"-", "CommandTask", "task", "-", "CommandTask", "end task"}));
}

/// Keeps what the commands carry.
class CarryingRenderer : public testing::RecordingRenderer
{
public:
    using RecordingRenderer::execute;
    using RecordingRenderer::RecordingRenderer;
    void execute(CommandCreateBuffer& command) override
    {
        m_text = std::string(static_cast<const char*>(command.properties.data), command.properties.size);
    }
    void execute(CommandMapBuffer& command) override { m_numbers = {command.offset, command.length, command.access}; }
    void execute(CommandCopyBuffer& command) override
    {
        m_numbers = {command.source.id, command.destination.id, command.sourceOffset, command.destinationOffset,
                     command.length};
    }
    void execute(CommandResizeTexture& command) override { m_numbers = {command.width, command.height, command.depth}; }
    void execute(CommandResizeBuffer& command) override { m_numbers = {command.size}; }
    void execute(CommandCreateQuery& command) override { m_numbers = {command.type}; }
    void execute(CommandUpdateDraw& command) override
    {
        m_gfxState = command.gfxState;
        m_shaderState = command.shaderState;
    }
    void execute(CommandRemoveDrawProperties& command) override
    {
        m_numbers = {command.handle.id, command.drawProperties.id};
    }

    std::string m_text;
    std::vector<uint64_t> m_numbers;
    std::shared_ptr<const GfxStateProperties> m_gfxState;
    std::shared_ptr<const ShaderStateCoreProperties> m_shaderState;
};

TEST_F(RecordingWrapperTest, ArgumentsReachTheCommands)
{
    CarryingRenderer renderer(m_trace);
    const auto run = [&renderer]
    {
        renderer.endFrame();
        renderer.execute();
        return std::exchange(renderer.m_numbers, {});
    };
    using Numbers = std::vector<uint64_t>;

    std::string data = "data";
    BufferProperties properties;
    properties.data = data.data();
    properties.size = data.size();
    renderer.createBuffer(properties);
    data = "used";
    run();
    EXPECT_EQ(renderer.m_text, "data");

    renderer.mapBuffer(BufferHandle(1), 1ull << 40, 2, 3);
    EXPECT_EQ(run(), (Numbers{1ull << 40, 2, 3}));
    renderer.copyBuffer(BufferHandle(1), BufferHandle(2), 3, 4, 5);
    EXPECT_EQ(run(), (Numbers{1, 2, 3, 4, 5}));
    renderer.resizeBuffer(BufferHandle(1), 1ull << 33);
    EXPECT_EQ(run(), (Numbers{1ull << 33}));
    renderer.resizeTexture(TextureHandle(1), 2, 3, 4);
    EXPECT_EQ(run(), (Numbers{2, 3, 4}));
    renderer.createQuery(6);
    EXPECT_EQ(run(), (Numbers{6}));
    renderer.removeDrawProperties(DrawHandle(1), DrawPropertiesHandle(2));
    EXPECT_EQ(run(), (Numbers{1, 2}));

    const auto gfxState = std::make_shared<GfxStateProperties>();
    const auto shaderState = std::make_shared<ShaderStateCoreProperties>();
    renderer.updateDraw(DrawHandle(1), gfxState, shaderState);
    run();
    EXPECT_EQ(renderer.m_gfxState, gfxState);
    EXPECT_EQ(renderer.m_shaderState, shaderState);
}

} // namespace
} // namespace renderengine
