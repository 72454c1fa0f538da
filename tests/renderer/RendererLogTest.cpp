#include "renderer/RendererLog.h"

#include "renderer/Frame.h"
#include "renderer/LogCapture.h"
#include "renderer/Task.h"

#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace renderengine
{
namespace
{

class RendererLogTest : public ::testing::Test
{
protected:
    RendererLogTest()
    {
        m_renderer.emplace(false);
        m_log.take();
    }

    /// The lines of one frame, without those of the frame itself.
    std::string runFrame()
    {
        m_renderer->endFrame();
        m_renderer->execute();
        std::string text = m_log.take();
        const std::string begin = "renderengine::RendererLog::begin \n";
        const std::string finish = "renderengine::RendererLog::finish \n";
        EXPECT_EQ(text.substr(0, begin.size()), begin);
        EXPECT_EQ(text.substr(text.size() - finish.size()), finish);
        return text.substr(begin.size(), text.size() - begin.size() - finish.size());
    }

    std::string createTarget(size_t attachments)
    {
        RenderTargetProperties properties;
        properties.attachments.resize(attachments);
        for (size_t i = 0; i < attachments; ++i)
        {
            properties.attachments[i].texture = TextureHandle(static_cast<uint32_t>(i + 5));
        }
        m_renderer->createRenderTarget(properties);
        return runFrame();
    }

    testing::LogCapture m_log;
    std::optional<RendererLog> m_renderer;
};

TEST_F(RendererLogTest, ConstructorAndDestructorTellTheDebugFlagAsAWord)
{
    m_renderer.emplace(true);
    EXPECT_EQ(m_log.take(), "renderengine::RendererLog::~RendererLog \n"
                            "renderengine::RendererLog::RendererLog debug = true \n");
    m_renderer.emplace(false);
    EXPECT_EQ(m_log.take(), "renderengine::RendererLog::~RendererLog \n"
                            "renderengine::RendererLog::RendererLog debug = false \n");
}

TEST_F(RendererLogTest, TracesAWholeSceneAsOneText)
{
    RendererLog& renderer = *m_renderer;
    TextureProperties colorProperties;
    colorProperties.width = 640;
    colorProperties.height = 480;
    const TextureHandle color = renderer.createTexture(colorProperties);
    const TextureHandle depth = renderer.createTexture(colorProperties);
    RenderTargetProperties targetProperties;
    targetProperties.attachments.resize(2);
    targetProperties.attachments[0].texture = color;
    targetProperties.attachments[1].texture = depth;
    const RenderTargetHandle target = renderer.createRenderTarget(targetProperties);
    ViewportProperties viewportProperties;
    viewportProperties.rectangle = SbVec4i32(-1, 2, 640, 480);
    const ViewportHandle viewport = renderer.createViewport(viewportProperties);

    BufferProperties bufferProperties;
    bufferProperties.size = 36;
    const BufferHandle buffer = renderer.createBuffer(bufferProperties);
    VertexBufferProperties vertexProperties;
    vertexProperties.buffer = buffer;
    vertexProperties.name = "position";
    const VertexBufferHandle positions = renderer.createVertexBuffer(vertexProperties);
    vertexProperties.name = "normal";
    const VertexBufferHandle normals = renderer.createVertexBuffer(vertexProperties);
    const IndexBufferHandle indices = renderer.createIndexBuffer(IndexBufferProperties());
    const SamplerHandle sampler = renderer.createSampler(SamplerProperties());
    const QueryHandle query = renderer.createQuery(5);

    auto shaderState = std::make_shared<ShaderStateCoreProperties>();
    shaderState->renderTarget = target;
    shaderState->viewport = viewport;
    auto gfxState = std::make_shared<GfxStateProperties>();
    gfxState->depthStencil.stencilTest = true;
    const DrawHandle draw = renderer.createDraw(gfxState, shaderState);
    DrawProperties drawProperties;
    drawProperties.vertexBuffers = {positions, normals};
    const DrawPropertiesHandle geometry = renderer.createDrawProperties(drawProperties);
    renderer.addDrawProperties(draw, geometry);

    const auto cache = std::make_shared<RenderCache>();
    cache->clearRenderTarget(target, ClearTargetProperties());
    cache->beginQuery(query);
    cache->draw(draw);
    cache->endQuery(query);
    cache->askQueryResult(query);
    renderer.submit(cache);

    renderer.destroyDraw(draw);
    renderer.destroyDrawProperties(geometry);
    renderer.destroyVertexBuffer(positions);
    renderer.destroyIndexBuffer(indices);
    renderer.destroySampler(sampler);
    renderer.destroyQuery(query);
    renderer.destroyRenderTarget(target);
    renderer.destroyViewport(viewport);
    renderer.destroyTexture(color);
    renderer.endFrame();
    renderer.execute();
    renderer.finishFrame();

    EXPECT_EQ(
        m_log.take(),
        "renderengine::RendererLog::begin \n"
        "renderengine::TextureLog::create id = 0 size = 640 480 1 \n"
        "renderengine::TextureLog::create id = 1 size = 640 480 1 \n"
        "renderengine::VertexBufferLog::create id = 0 name = position \n"
        "renderengine::VertexBufferLog::create id = 1 name = normal \n"
        "renderengine::IndexBufferLog::create id = 0 \n"
        "renderengine::RenderTargetLog::create id = 0 attachments = 0 1 \n"
        "renderengine::ViewportLog::create id = 0 size = -1 2 640 480 \n"
        "renderengine::SamplerLog::create id = 0 minFilter =  2 magFilter =  2 \n"
        "renderengine::QueryLog::create id = 0 type = QUERY_TIME_ELAPSED \n"
        "renderengine::DrawLog::create id = 0 RenderTarget = 0 Viewport = 0 DepthTest = true StencilTest = true \n"
        "renderengine::DrawPropertiesLog::create id = 0 vertexBuffers = 0 1  \n"
        "renderengine::DrawLog::addDrawProperties id = 0 DrawProperties = 0 \n"
        "renderengine::RendererLog::execute CommandClearRT target = 0 flags = 7 \n"
        "renderengine::RendererLog::execute CommandBeginQuery queryID = 0 \n"
        "renderengine::RendererLog::execute CommandRender drawID = 0 \n"
        "renderengine::RendererLog::execute CommandEndQuery queryID = 0 \n"
        "renderengine::RendererLog::execute CommandGetQueryResult queryID = 0 \n"
        "renderengine::DrawLog::destroy id = 0 \n"
        "renderengine::DrawPropertiesLog::destroy id = 0 \n"
        "renderengine::VertexBufferLog::destroy id = 0 \n"
        "renderengine::IndexBufferLog::destroy id = 0 \n"
        "renderengine::SamplerLog::destroy id = 0 \n"
        "renderengine::QueryLog::destroy id = 0 \n"
        "renderengine::RenderTargetLog::destroy id = 0 \n"
        "renderengine::ViewportLog::destroy id = 0 \n"
        "renderengine::TextureLog::destroy id = 0 \n"
        "renderengine::RendererLog::finish \n"
        "renderengine::RendererLog::finishFrame \n");
}

TEST_F(RendererLogTest, BeginWithoutAFramePrintsItsLineAlone)
{
    m_renderer->execute();
    EXPECT_EQ(m_log.take(), "renderengine::RendererLog::begin \n");
}

TEST_F(RendererLogTest, ARenderTargetPrintsOneAttachmentUpToFourOrTheirCount)
{
    const std::string start = "renderengine::RenderTargetLog::create id = ";
    EXPECT_EQ(createTarget(0), start + "0 #attachments = 0 \n");
    EXPECT_EQ(createTarget(1), start + "1 attachment = 5 \n");
    EXPECT_EQ(createTarget(2), start + "2 attachments = 5 6 \n");
    EXPECT_EQ(createTarget(3), start + "3 attachments = 5 6 7 \n");
    EXPECT_EQ(createTarget(4), start + "4 attachments = 5 6 7 8 \n");
    EXPECT_EQ(createTarget(5), start + "5 #attachments = 5 \n");
}

TEST_F(RendererLogTest, AQueryPrintsTheNameOfItsTypeOrNull)
{
    for (uint32_t type = 0; type < 8; ++type)
    {
        m_renderer->createQuery(type);
    }
    EXPECT_EQ(runFrame(), "renderengine::QueryLog::create id = 0 type = QUERY_SAMPLES_PASSED \n"
                          "renderengine::QueryLog::create id = 1 type = QUERY_ANY_SAMPLES_PASSED \n"
                          "renderengine::QueryLog::create id = 2 type = QUERY_ANY_SAMPLES_PASSED_CONSERVATIVE \n"
                          "renderengine::QueryLog::create id = 3 type = QUERY_PRIMITIVES_GENERATED \n"
                          "renderengine::QueryLog::create id = 4 type = QUERY_TRANSFORM_FEEDBACK_PRIMITIVES_WRITTEN \n"
                          "renderengine::QueryLog::create id = 5 type = QUERY_TIME_ELAPSED \n"
                          "renderengine::QueryLog::create id = 6 type = QUERY_TIMESTAMP \n"
                          "renderengine::QueryLog::create id = 7 type = null \n");
}

TEST_F(RendererLogTest, SamplerFiltersPrintAsNumbersBehindTwoBlanks)
{
    SamplerProperties properties;
    properties.minFilter = 1;
    properties.magFilter = 3;
    m_renderer->createSampler(properties);
    EXPECT_EQ(runFrame(), "renderengine::SamplerLog::create id = 0 minFilter =  1 magFilter =  3 \n");
}

TEST_F(RendererLogTest, UpdatesAndResizesPrintTheirNewValues)
{
    const DrawHandle draw = m_renderer->createDraw(nullptr, nullptr);
    const DrawPropertiesHandle geometry = m_renderer->createDrawProperties(DrawProperties());
    const VertexBufferHandle vertexBuffer = m_renderer->createVertexBuffer(VertexBufferProperties());
    const IndexBufferHandle indexBuffer = m_renderer->createIndexBuffer(IndexBufferProperties());
    const TextureHandle texture = m_renderer->createTexture(TextureProperties());
    const ViewportHandle viewport = m_renderer->createViewport(ViewportProperties());
    runFrame();

    auto shaderState = std::make_shared<ShaderStateCoreProperties>();
    shaderState->renderTarget = RenderTargetHandle(8);
    auto gfxState = std::make_shared<GfxStateProperties>();
    gfxState->depthStencil.depthTest = false;
    m_renderer->updateDraw(draw, gfxState, shaderState);
    DrawProperties drawProperties;
    drawProperties.vertexBuffers = {VertexBufferHandle(12), VertexBufferHandle(3)};
    m_renderer->updateDrawProperties(geometry, drawProperties);
    m_renderer->removeDrawProperties(draw, geometry);
    m_renderer->removeAllDrawProperties(draw);
    VertexBufferProperties vertexProperties;
    vertexProperties.name = "uv";
    m_renderer->updateVertexBuffer(vertexBuffer, vertexProperties);
    m_renderer->updateIndexBuffer(indexBuffer, IndexBufferProperties());
    TextureProperties textureProperties;
    textureProperties.width = 2;
    textureProperties.height = 3;
    textureProperties.depth = 4;
    m_renderer->updateTexture(texture, textureProperties);
    m_renderer->resizeTexture(texture, 5, 6, 7);
    ViewportProperties viewportProperties;
    viewportProperties.rectangle = SbVec4i32(1, 2, 3, 4);
    m_renderer->updateViewport(viewport, viewportProperties);
    EXPECT_EQ(runFrame(), "renderengine::DrawLog::update id = 0 RenderTarget = 8 Viewport = 4294967295 "
                          "DepthTest = false StencilTest = false \n"
                          "renderengine::DrawPropertiesLog::update id = 0 vertexBuffers = 12 3  \n"
                          "renderengine::DrawLog::removeDrawProperties id = 0 DrawProperties = 0 \n"
                          "renderengine::DrawLog::removeAllDrawProperties id = 0 \n"
                          "renderengine::VertexBufferLog::update id = 0 name = uv \n"
                          "renderengine::IndexBufferLog::update id = 0 \n"
                          "renderengine::TextureLog::update id = 0 size = 2 3 4 \n"
                          "renderengine::TextureLog::resize id = 0 size = 5 6 7 \n"
                          "renderengine::ViewportLog::update id = 0 size = 1 2 3 4 \n");
}

TEST_F(RendererLogTest, ADrawWithoutStatePrintsTheDefaults)
{
    m_renderer->createDraw(nullptr, nullptr);
    EXPECT_EQ(runFrame(), "renderengine::DrawLog::create id = 0 RenderTarget = 4294967295 Viewport = 4294967295 "
                          "DepthTest = true StencilTest = false \n");
}

TEST_F(RendererLogTest, DrawPropertiesWithoutVertexBuffersPrintTwoBlanks)
{
    m_renderer->createDrawProperties(DrawProperties());
    EXPECT_EQ(runFrame(), "renderengine::DrawPropertiesLog::create id = 0 vertexBuffers =  \n");
}

TEST_F(RendererLogTest, TexturesPrintInTheOrderOfTheirCommandsWithTheNumbersOfRecording)
{
    const TextureHandle first = m_renderer->createTexture(TextureProperties());
    m_renderer->createTexture(TextureProperties());
    EXPECT_EQ(runFrame(), "renderengine::TextureLog::create id = 0 size = 1 1 1 \n"
                          "renderengine::TextureLog::create id = 1 size = 1 1 1 \n");
    m_renderer->destroyTexture(first);
    EXPECT_EQ(runFrame(), "renderengine::TextureLog::destroy id = 0 \n");
    EXPECT_EQ(m_renderer->createTexture(TextureProperties()), first);
}

TEST_F(RendererLogTest, CommandsOfACachePrintTheirLines)
{
    const auto cache = std::make_shared<RenderCache>();
    TextureHandle texture(4);
    cache->compute(std::make_shared<ShaderStateCoreProperties>(), ComputeProperties());
    cache->generateMipmap(texture);
    ClearTargetProperties clear;
    clear.flags = 2;
    cache->clearRenderTarget(RenderTargetHandle(), clear);
    m_renderer->submit(cache);
    EXPECT_EQ(runFrame(), "renderengine::RendererLog::execute CommandCompute \n"
                          "renderengine::RendererLog::execute CommandGenerateMipmap textureID = 4 \n"
                          "renderengine::RendererLog::execute CommandClearRT target = 4294967295 flags = 2 \n");
}

TEST_F(RendererLogTest, SixConceptsHaveNoNumbers)
{
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_FALSE(m_renderer->createBuffer(BufferProperties()).isValid());
        EXPECT_FALSE(m_renderer->createShaderBuffer(ShaderBufferProperties()).isValid());
        EXPECT_FALSE(m_renderer->createTextureImage(TextureImageProperties()).isValid());
        EXPECT_FALSE(m_renderer->createShaderObject(ShaderObjectProperties()).isValid());
        EXPECT_FALSE(m_renderer->createShaderProgram(ShaderProgramProperties()).isValid());
        EXPECT_FALSE(m_renderer->createShaderParameter(ShaderParameterProperties<float>()).isValid());
    }
    EXPECT_EQ(m_renderer->generateDrawHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateDrawPropertiesHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateVertexBufferHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateIndexBufferHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateSamplerHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateTextureHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateRenderTargetHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateViewportHandle().id, 0u);
    EXPECT_EQ(m_renderer->generateQueryHandle().id, 0u);
}

TEST_F(RendererLogTest, CreateShaderParameterRecordsACommandWithTheInvalidHandle)
{
    m_renderer->createShaderParameter(ShaderParameterProperties<float>());
    const std::shared_ptr<Frame> frame = m_renderer->endFrame();
    ASSERT_EQ(frame->getHeadCommands().size(), 1u);
    using Create = CommandCreateShaderParameter<ShaderParameterProperties<float>>;
    const auto* command = dynamic_cast<const Create*>(frame->getHeadCommands().begin()->get());
    ASSERT_NE(command, nullptr);
    EXPECT_FALSE(command->handle.isValid());
}

TEST_F(RendererLogTest, OtherOperationsPrintNothingAndRunNoTask)
{
    RendererBase& base = *m_renderer;
    int runs = 0;
    const TaskProperties task = testing::makeTask([&runs] { ++runs; });
    CommandTask plainTask;
    plainTask.set(task);
    plainTask.execute(base);
    CommandRenderTask renderTask;
    renderTask.set(task, nullptr, ShaderStateProperties(), true);
    renderTask.execute(base);
#define RENDERENGINE_RUN(COMMAND) \
    {                             \
        COMMAND command;          \
        command.execute(base);    \
    }
#define RENDERENGINE_RUN_PARAMETER(PROPERTIES)                 \
    RENDERENGINE_RUN(CommandCreateShaderParameter<PROPERTIES>) \
    RENDERENGINE_RUN(CommandUpdateShaderParameter<PROPERTIES>)
    RENDERENGINE_RUN(CommandBlit)
    RENDERENGINE_RUN(CommandPopDebugMarker)
    RENDERENGINE_RUN(CommandPushDebugMarker)
    RENDERENGINE_RUN(CommandBeginTransformFeedback)
    RENDERENGINE_RUN(CommandEndTransformFeedback)
    RENDERENGINE_RUN(CommandMemoryBarrier)
    RENDERENGINE_RUN(CommandReadbackTexture)
    RENDERENGINE_RUN(CommandUpdateTextureBatchData)
    RENDERENGINE_RUN(CommandUpdateRenderTarget)
    RENDERENGINE_RUN(CommandUpdateSampler)
    RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_RUN_PARAMETER)
    RENDERENGINE_RUN(CommandDestroyShaderParameter)
    RENDERENGINE_RUN(CommandCreateShaderObject)
    RENDERENGINE_RUN(CommandDestroyShaderObject)
    RENDERENGINE_RUN(CommandCreateShaderProgram)
    RENDERENGINE_RUN(CommandDestroyShaderProgram)
    RENDERENGINE_RUN(CommandCreateTextureImage)
    RENDERENGINE_RUN(CommandUpdateTextureImage)
    RENDERENGINE_RUN(CommandDestroyTextureImage)
    RENDERENGINE_RUN(CommandCreateShaderBuffer)
    RENDERENGINE_RUN(CommandUpdateShaderBuffer)
    RENDERENGINE_RUN(CommandDestroyShaderBuffer)
    RENDERENGINE_RUN(CommandCreateBuffer)
    RENDERENGINE_RUN(CommandUpdateBuffer)
    RENDERENGINE_RUN(CommandResizeBuffer)
    RENDERENGINE_RUN(CommandMapBuffer)
    RENDERENGINE_RUN(CommandUnmapBuffer)
    RENDERENGINE_RUN(CommandCopyBuffer)
    RENDERENGINE_RUN(CommandDestroyBuffer)
#undef RENDERENGINE_RUN_PARAMETER
#undef RENDERENGINE_RUN
    m_renderer->init();
    m_renderer->destroy();
    m_renderer->readbackTexture(TextureHandle(0), nullptr, 0);
    m_renderer->presentFrameSync();
    EXPECT_EQ(m_renderer->getMappedBufferPointer(BufferHandle(0)), nullptr);
    EXPECT_EQ(m_renderer->updatePresentEventArg(), nullptr);
    EXPECT_EQ(m_log.take(), "");
    EXPECT_EQ(runs, 0);
}

TEST_F(RendererLogTest, PresentDoesNothingAndLogsNothing)
{
    EXPECT_FALSE(m_renderer->canPresent());
    EXPECT_FALSE(m_renderer->present());
    EXPECT_EQ(m_renderer->getPresentFrame(), nullptr);
    EXPECT_EQ(m_renderer->getReversePresentFrame(), nullptr);
    EXPECT_EQ(m_log.take(), "");
}

TEST_F(RendererLogTest, DestroyGivesTheNumberBackAndWritesTheInvalidHandleIntoTheCommand)
{
    const DrawHandle draw = m_renderer->createDraw(nullptr, nullptr);
    runFrame();
    CommandDestroyDraw command;
    command.set(draw);
    m_renderer->execute(command);
    EXPECT_FALSE(command.handle.isValid());
    EXPECT_EQ(m_log.take(), "renderengine::DrawLog::destroy id = 0 \n");
    EXPECT_EQ(m_renderer->createDraw(nullptr, nullptr), draw);
}

TEST_F(RendererLogTest, ACommandOnANumberWithoutAnObjectIsSkipped)
{
    RendererBase& base = *m_renderer;
#define RENDERENGINE_RUN(COMMAND)                  \
    for (const uint32_t id : {1000u, 0xFFFFFFFFu}) \
    {                                              \
        COMMAND command;                           \
        command.handle.id = id;                    \
        command.execute(base);                     \
    }
    RENDERENGINE_RUN(CommandUpdateDraw)
    RENDERENGINE_RUN(CommandDestroyDraw)
    RENDERENGINE_RUN(CommandAddDrawProperties)
    RENDERENGINE_RUN(CommandRemoveDrawProperties)
    RENDERENGINE_RUN(CommandRemoveAllDrawProperties)
    RENDERENGINE_RUN(CommandUpdateDrawProperties)
    RENDERENGINE_RUN(CommandDestroyDrawProperties)
    RENDERENGINE_RUN(CommandUpdateVertexBuffer)
    RENDERENGINE_RUN(CommandDestroyVertexBuffer)
    RENDERENGINE_RUN(CommandUpdateIndexBuffer)
    RENDERENGINE_RUN(CommandDestroyIndexBuffer)
    RENDERENGINE_RUN(CommandUpdateTexture)
    RENDERENGINE_RUN(CommandResizeTexture)
    RENDERENGINE_RUN(CommandDestroyTexture)
    RENDERENGINE_RUN(CommandDestroySampler)
    RENDERENGINE_RUN(CommandDestroyRenderTarget)
    RENDERENGINE_RUN(CommandUpdateViewport)
    RENDERENGINE_RUN(CommandDestroyViewport)
    RENDERENGINE_RUN(CommandDestroyQuery)
#undef RENDERENGINE_RUN
    EXPECT_EQ(m_log.take(), "");
}

TEST(DrawLogTest, KeepsItsStateAndTheNumbersOfItsDrawProperties)
{
    const testing::LogCapture log;
    DrawLog draw;
    EXPECT_EQ(draw.id, 0xFFFFFFFFu);
    const auto shaderState = std::make_shared<const ShaderStateCoreProperties>();
    const auto gfxState = std::make_shared<const GfxStateProperties>();
    draw.create(shaderState, gfxState);
    draw.addDrawProperties(1);
    draw.addDrawProperties(2);
    draw.addDrawProperties(1);
    draw.removeDrawProperties(1);
    EXPECT_EQ(draw.drawProperties, (std::vector<uint32_t>{2, 1}));
    draw.removeDrawProperties(7);
    EXPECT_EQ(draw.drawProperties, (std::vector<uint32_t>{2, 1}));
    draw.removeAllDrawProperties();
    EXPECT_TRUE(draw.drawProperties.empty());

    EXPECT_EQ(draw.shaderState, shaderState);
    EXPECT_EQ(draw.gfxState, gfxState);
    draw.addDrawProperties(3);
    draw.destroy();
    EXPECT_EQ(draw.shaderState, nullptr);
    EXPECT_EQ(draw.gfxState, nullptr);
    EXPECT_TRUE(draw.drawProperties.empty());
}

} // namespace
} // namespace renderengine
