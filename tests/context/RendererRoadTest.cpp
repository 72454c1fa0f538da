// The renderers without a device behind a whole context, on both roads.

#include "context/FakeContext.h"
#include "context/Roads.h"
#include "renderer/LogCapture.h"
#include "renderer/RendererLog.h"
#include "renderer/RendererNull.h"
#include "renderer/Task.h"

#include <renderengine/BufferedRenderCache.h>
#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace renderengine
{
namespace
{

using testing::FakeContext;
using testing::Lines;
using testing::makeTask;
using testing::Road;
using testing::Trace;

std::unique_ptr<FakeContext> makeContext(Road road, Trace& trace, RendererBase* renderer)
{
    const uint8_t flags = road == Road::Thread ? ContextShare | ContextMultithread : ContextShare;
    auto context = std::make_unique<FakeContext>(flags, trace, renderer);
    context->init();
    return context;
}

class NullRoadTest : public ::testing::TestWithParam<Road>
{
protected:
    Trace m_trace;
    std::unique_ptr<FakeContext> m_context = makeContext(GetParam(), m_trace, new RendererNull(false));
};
INSTANTIATE_TEST_SUITE_P(Road, NullRoadTest, ::testing::Values(Road::Inline, Road::Thread), testing::roadName);

TEST_P(NullRoadTest, CreateAndDestroyInALoopGivesEverGrowingNumbers)
{
    for (uint32_t i = 0; i < 50; ++i)
    {
        const SamplerHandle sampler = m_context->createSampler(SamplerProperties());
        const BufferHandle buffer = m_context->createBuffer(BufferProperties());
        EXPECT_EQ(sampler.id, i);
        EXPECT_EQ(buffer.id, i);
        m_context->destroySampler(sampler);
        m_context->destroyBuffer(buffer);
        m_context->execute(true);
    }
}

TEST_P(NullRoadTest, AReadbackLeavesTheClientsMemoryAsItWas)
{
    TextureHandle texture = m_context->createTexture(TextureProperties());
    const auto cache = std::make_shared<RenderCache>();
    cache->readbackTexture(texture);
    m_context->submit(cache);
    m_context->execute(true);
    std::vector<uint8_t> pixels(16, 7);
    m_context->readbackTexture(texture, pixels.data(), pixels.size());
    EXPECT_EQ(pixels, std::vector<uint8_t>(16, 7));
}

TEST_P(NullRoadTest, NoTaskRunsWhereverItStands)
{
    int runs = 0;
    const TaskProperties task = makeTask([&runs] { ++runs; });
    const auto cache = std::make_shared<RenderCache>();
    cache->task(task);
    cache->renderTask(task, nullptr, ShaderStateProperties(), true);
    m_context->addTask(task);
    m_context->submit(cache);
    m_context->addTask(task);
    m_context->addEndTask(task);
    m_context->execute(true);
    m_context->renderTask(task, nullptr, ShaderStateProperties(), false);
    EXPECT_EQ(runs, 0);
}

TEST_P(NullRoadTest, AQueryResultIsTheValueOfTheInvalidHandle)
{
    const QueryHandle query = m_context->createQuery(0);
    const auto cache = std::make_shared<RenderCache>();
    cache->beginQuery(query);
    cache->endQuery(query);
    cache->askQueryResult(query);
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(m_context->getQueryResult(query), 0u);
    EXPECT_EQ(m_context->getQueryResult(QueryHandle()), 0u);
}

TEST_P(NullRoadTest, AMappedBufferIsNullAndPresentReturnsFalse)
{
    const BufferHandle buffer = m_context->createBuffer(BufferProperties());
    EXPECT_EQ(m_context->mapBuffer(buffer, 0, 16, 1), nullptr);
    m_context->unmapBuffer(buffer);
    EXPECT_FALSE(m_context->canPresent());
    EXPECT_FALSE(m_context->present());
}

class LogRoadTest : public ::testing::TestWithParam<Road>
{
protected:
    LogRoadTest()
    {
        m_context = makeContext(GetParam(), m_trace, new RendererLog(false));
        m_context->executeResourceCommands(); // the render thread has started when this returns
        m_log.take();
    }

    /// The trace of a frame that the client waits for.
    std::string runFrame()
    {
        m_context->execute(true);
        return m_log.take();
    }

    testing::LogCapture m_log;
    Trace m_trace;
    std::unique_ptr<FakeContext> m_context;
};
INSTANTIATE_TEST_SUITE_P(Road, LogRoadTest, ::testing::Values(Road::Inline, Road::Thread), testing::roadName);

TEST_P(LogRoadTest, AFrameReadsFromItsTrace)
{
    TextureProperties size;
    size.width = 64;
    size.height = 32;
    const TextureHandle color = m_context->createTexture(size);
    const TextureHandle depth = m_context->createTexture(size);
    RenderTargetProperties attachments;
    attachments.attachments.resize(2);
    attachments.attachments[0].texture = color;
    attachments.attachments[1].texture = depth;
    const RenderTargetHandle target = m_context->createRenderTarget(attachments);
    ViewportProperties rectangle;
    rectangle.rectangle = SbVec4i32(0, 0, 64, 32);
    const ViewportHandle viewport = m_context->createViewport(rectangle);
    VertexBufferProperties layout;
    layout.name = "position";
    const VertexBufferHandle positions = m_context->createVertexBuffer(layout);
    auto shaderState = std::make_shared<ShaderStateCoreProperties>();
    shaderState->renderTarget = target;
    shaderState->viewport = viewport;
    const DrawHandle draw = m_context->createDraw(std::make_shared<GfxStateProperties>(), shaderState);
    DrawProperties geometry;
    geometry.vertexBuffers = {positions};
    const DrawPropertiesHandle properties = m_context->createDrawProperties(geometry);
    m_context->addDrawProperties(draw, properties);
    const auto cache = std::make_shared<RenderCache>();
    cache->clearRenderTarget(target, ClearTargetProperties());
    cache->draw(draw);
    m_context->submit(cache);
    m_context->destroyDraw(draw);
    m_context->destroyDrawProperties(properties);

    EXPECT_EQ(
        runFrame(),
        "renderengine::RendererLog::begin \n"
        "renderengine::TextureLog::create id = 0 size = 64 32 1 \n"
        "renderengine::TextureLog::create id = 1 size = 64 32 1 \n"
        "renderengine::VertexBufferLog::create id = 0 name = position \n"
        "renderengine::RenderTargetLog::create id = 0 attachments = 0 1 \n"
        "renderengine::ViewportLog::create id = 0 size = 0 0 64 32 \n"
        "renderengine::DrawLog::create id = 0 RenderTarget = 0 Viewport = 0 DepthTest = true StencilTest = false \n"
        "renderengine::DrawPropertiesLog::create id = 0 vertexBuffers = 0  \n"
        "renderengine::DrawLog::addDrawProperties id = 0 DrawProperties = 0 \n"
        "renderengine::RendererLog::execute CommandClearRT target = 0 flags = 7 \n"
        "renderengine::RendererLog::execute CommandRender drawID = 0 \n"
        "renderengine::DrawLog::destroy id = 0 \n"
        "renderengine::DrawPropertiesLog::destroy id = 0 \n"
        "renderengine::RendererLog::finish \n"
        "renderengine::RendererLog::finishFrame \n");
}

TEST_P(LogRoadTest, TwoTexturesPrintInTheOrderOfTheirCommandsWithTheNumbersOfRecording)
{
    const TextureHandle first = m_context->createTexture(TextureProperties());
    const TextureHandle second = m_context->createTexture(TextureProperties());
    m_context->resizeTexture(second, 2, 2, 2);
    m_context->resizeTexture(first, 1, 1, 1);
    EXPECT_EQ(runFrame(), "renderengine::RendererLog::begin \n"
                          "renderengine::TextureLog::create id = 0 size = 1 1 1 \n"
                          "renderengine::TextureLog::create id = 1 size = 1 1 1 \n"
                          "renderengine::TextureLog::resize id = 1 size = 2 2 2 \n"
                          "renderengine::TextureLog::resize id = 0 size = 1 1 1 \n"
                          "renderengine::RendererLog::finish \n"
                          "renderengine::RendererLog::finishFrame \n");
}

TEST_P(LogRoadTest, FiveAttachmentsAndAnUnknownQueryTypePrintCountAndNull)
{
    RenderTargetProperties attachments;
    attachments.attachments.resize(5);
    m_context->createRenderTarget(attachments);
    m_context->createQuery(7);
    EXPECT_EQ(runFrame(), "renderengine::RendererLog::begin \n"
                          "renderengine::RenderTargetLog::create id = 0 #attachments = 5 \n"
                          "renderengine::QueryLog::create id = 0 type = null \n"
                          "renderengine::RendererLog::finish \n"
                          "renderengine::RendererLog::finishFrame \n");
}

TEST_P(LogRoadTest, PresentDoesNothingAndLogsNothingAndNoTaskRuns)
{
    EXPECT_FALSE(m_context->canPresent());
    EXPECT_FALSE(m_context->present());
    m_context->presentFrameSync();
    EXPECT_EQ(m_log.take(), "");
    int runs = 0;
    const TaskProperties task = makeTask([&runs] { ++runs; });
    const auto cache = std::make_shared<RenderCache>();
    cache->task(task);
    m_context->submit(cache);
    m_context->addEndTask(task);
    m_context->execute(true);
    EXPECT_EQ(runs, 0);
}

TEST_P(LogRoadTest, ADiscardedDestroyKeepsTheObjectAndItsNumber)
{
    const SamplerHandle first = m_context->createSampler(SamplerProperties());
    m_context->execute(true);
    m_context->destroySampler(first);
    m_context->discardFrame();
    EXPECT_EQ(m_context->createSampler(SamplerProperties()), SamplerHandle(first.id + 1));
    m_log.take();
    m_context->destroySampler(first);
    EXPECT_NE(runFrame().find("renderengine::SamplerLog::destroy id = 0 \n"), std::string::npos);
    EXPECT_EQ(m_context->createSampler(SamplerProperties()), first);
}

TEST_P(LogRoadTest, AHandleDestroyedTwiceInOneFrameGivesItsNumberBackOnce)
{
    const SamplerHandle first = m_context->createSampler(SamplerProperties());
    m_context->execute(true);
    m_context->destroySampler(first);
    m_context->destroySampler(first);
    m_context->execute(true);
    EXPECT_EQ(m_context->createSampler(SamplerProperties()), first);
    EXPECT_EQ(m_context->createSampler(SamplerProperties()), SamplerHandle(first.id + 1));
}

class RecordingRoadTest : public testing::RoadTest
{
};
INSTANTIATE_TEST_SUITE_P(Road, RecordingRoadTest, ::testing::Values(Road::Inline, Road::Thread), testing::roadName);

TEST_P(RecordingRoadTest, ListsOfACacheRunInTheOrderOfTheirIndices)
{
    const auto cache = std::make_shared<RenderCache>();
    cache->beginBufferList(2);
    cache->draw(DrawHandle(1));
    cache->setBufferListIndex(1);
    cache->draw(DrawHandle(2));
    cache->setBufferListIndex(0);
    cache->draw(DrawHandle(3));
    cache->endBufferList();
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(),
              runAndFinish({"begin", "CommandRender 1", "CommandRender 3", "CommandRender 2", "finish"}));
}

TEST_P(RecordingRoadTest, OfACacheInListModeTheCurrentListIsSubmitted)
{
    const auto cache = std::make_shared<RenderCache>();
    cache->draw(DrawHandle(1));
    cache->beginBufferList(2);
    cache->draw(DrawHandle(2));
    cache->setBufferListIndex(1);
    cache->draw(DrawHandle(3));
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 3", "finish"}));
}

TEST_P(RecordingRoadTest, ABufferedCacheIsSwappedAndCopiedWhileItsFramesAreOnTheirWay)
{
    BufferedRenderCache cache;
    Lines expected;
    for (uint32_t frame = 0; frame < 100; ++frame)
    {
        // The last two draws of the frame before, and two new ones.
        const auto former = static_cast<int32_t>(frame == 0 ? 0 : frame == 1 ? 2 : 4);
        cache.copy(SbVec2i32(former == 0 ? 0 : former - 2, former));
        cache.getRenderCache()->draw(DrawHandle(2 * frame));
        cache.getRenderCache()->draw(DrawHandle(2 * frame + 1));
        m_context->submit(cache.getRenderCache());
        m_context->execute(false);
        cache.swap();
        Lines work{"begin"};
        for (uint32_t draw = frame == 0 ? 0 : 2 * frame - 2; draw < 2 * frame + 2; ++draw)
        {
            work.push_back("CommandRender " + std::to_string(draw));
        }
        work.push_back("finish");
        for (const std::string& line : run(work))
        {
            expected.push_back(line);
        }
    }
    cache.invalidate();
    m_context->executeResourceCommands(); // behind all of them
    if (!isThreaded())
    {
        expected.insert(expected.end(), {"makeCurrent", "doneCurrent"});
    }
    EXPECT_EQ(takeWithoutFinishFrame(), expected);
}

TEST_P(RecordingRoadTest, ACacheLongerThanAChunkRunsWholeAfterItIsGone)
{
    constexpr uint32_t COUNT = 20000;
    {
        const auto cache = std::make_shared<RenderCache>();
        for (uint32_t i = 0; i < COUNT; ++i)
        {
            cache->draw(DrawHandle(i));
        }
        m_context->submit(cache);
    }
    m_context->execute(true);
    Lines work{"begin"};
    for (uint32_t i = 0; i < COUNT; ++i)
    {
        work.push_back("CommandRender " + std::to_string(i));
    }
    work.push_back("finish");
    EXPECT_EQ(m_trace.take(), runAndFinish(work));
}

} // namespace
} // namespace renderengine
