#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <renderengine/RenderCache.h>

#include "commands/CommandBuffer.h"
#include "commands/CommandList.h"

namespace
{

using namespace renderengine;

std::vector<uint32_t> drawIds(const RenderCache& cache)
{
    std::vector<uint32_t> ids;
    const auto buffer = cache.getCommandBuffer();
    for (const std::shared_ptr<CommandBase>& command : *buffer)
    {
        ids.push_back(dynamic_cast<const CommandRender&>(*command).handle.id);
    }
    return ids;
}

template <class Command> const Command& lastCommand(const RenderCache& cache)
{
    const auto buffer = cache.getCommandBuffer();
    return dynamic_cast<const Command&>(**std::next(buffer->begin(), static_cast<std::ptrdiff_t>(buffer->size()) - 1));
}

struct CountingTask final : TaskInterface
{
    void run() override { ++runs; }

    int runs = 0;
};

TEST(RenderCache, StartsEmptyAndCountsItsCommands)
{
    RenderCache cache;
    EXPECT_EQ(cache.getCommandBufferSize(), 0u);
    EXPECT_NE(cache.getCommandBuffer(), nullptr);
    cache.draw(DrawHandle(1));
    EXPECT_EQ(cache.getCommandBufferSize(), 1u);
}

TEST(RenderCache, ReplaysListElementsInIndexOrder)
{
    RenderCache cache;
    cache.draw(DrawHandle(0));
    cache.beginBufferList(2);
    cache.draw(DrawHandle(1));
    cache.setBufferListIndex(1);
    cache.draw(DrawHandle(2));
    EXPECT_EQ(cache.getCommandBufferSize(), 1u);
    cache.setBufferListIndex(0);
    cache.draw(DrawHandle(3));
    cache.endBufferList();
    EXPECT_EQ(drawIds(cache), (std::vector<uint32_t>{0, 1, 3, 2}));
}

TEST(RenderCache, StaysInPlainModeWithAnEmptyBufferList)
{
    RenderCache cache;
    const auto buffer = cache.getCommandBuffer();
    cache.beginBufferList(0);
    EXPECT_EQ(cache.getCommandBuffer(), buffer);
    cache.draw(DrawHandle(1));
    EXPECT_EQ(buffer->size(), 1u);
}

TEST(RenderCache, BeginningAgainDropsTheOldLists)
{
    RenderCache cache;
    cache.beginBufferList(2);
    cache.draw(DrawHandle(1));
    cache.setBufferListIndex(1);
    cache.draw(DrawHandle(2));
    cache.beginBufferList(1);
    cache.draw(DrawHandle(3));
    cache.endBufferList();
    EXPECT_EQ(drawIds(cache), (std::vector<uint32_t>{3}));
}

TEST(RenderCache, EndingLeavesTheIndexWithoutEffect)
{
    RenderCache cache;
    cache.beginBufferList(2);
    cache.setBufferListIndex(1);
    cache.endBufferList();
    cache.draw(DrawHandle(1));
    EXPECT_EQ(drawIds(cache), (std::vector<uint32_t>{1}));
}

TEST(RenderCache, ResetEmptiesTheMainListAfterTheBufferListEnded)
{
    RenderCache cache;
    cache.beginBufferList(1);
    cache.draw(DrawHandle(1));
    cache.endBufferList();
    EXPECT_EQ(cache.getCommandBufferSize(), 1u);
    cache.reset();
    EXPECT_EQ(cache.getCommandBufferSize(), 0u);
}

TEST(RenderCache, ResetInsideABufferListEmptiesOneElementOnly)
{
    RenderCache cache;
    cache.draw(DrawHandle(0));
    cache.beginBufferList(2);
    cache.draw(DrawHandle(1));
    cache.setBufferListIndex(1);
    cache.draw(DrawHandle(2));
    cache.reset();
    cache.endBufferList();
    EXPECT_EQ(drawIds(cache), (std::vector<uint32_t>{0, 1}));
}

TEST(RenderCache, ACopySharesTheLists)
{
    RenderCache cache;
    cache.draw(DrawHandle(1));
    RenderCache copy(cache);
    copy.draw(DrawHandle(2));
    EXPECT_EQ(cache.getCommandBufferSize(), 2u);
    EXPECT_EQ(copy.getCommandBufferSize(), 2u);
    cache.draw(DrawHandle(3));
    EXPECT_EQ(drawIds(copy), (std::vector<uint32_t>{1, 2, 3}));
    RenderCache assigned;
    assigned = cache;
    EXPECT_EQ(assigned.getCommandBuffer(), cache.getCommandBuffer());
}

TEST(RenderCache, CopiedCommandsStayValidWhenTheSourceIsReset)
{
    RenderCache source;
    for (uint32_t i = 0; i < 5; ++i)
    {
        source.draw(DrawHandle(i));
    }
    RenderCache cache;
    cache.copy(source, SbVec2i32(0, static_cast<int32_t>(source.getCommandBufferSize())));
    EXPECT_EQ(*cache.getCommandBuffer()->begin(), *source.getCommandBuffer()->begin());
    source.reset();
    for (uint32_t i = 0; i < 100; ++i)
    {
        source.draw(DrawHandle(1000 + i));
    }
    EXPECT_EQ(drawIds(cache), (std::vector<uint32_t>{0, 1, 2, 3, 4}));
}

TEST(RenderCache, CopiesARangeBetweenTheCurrentLists)
{
    RenderCache source;
    source.beginBufferList(1);
    for (uint32_t i = 0; i < 5; ++i)
    {
        source.draw(DrawHandle(i));
    }
    RenderCache cache;
    cache.beginBufferList(2);
    cache.setBufferListIndex(1);
    cache.copy(source, SbVec2i32(1, 3));
    EXPECT_EQ(drawIds(cache), (std::vector<uint32_t>{1, 2}));
    cache.setBufferListIndex(0);
    EXPECT_EQ(cache.getCommandBufferSize(), 0u);
}

TEST(RenderCache, RecordsInvalidHandlesUnchanged)
{
    RenderCache cache;
    cache.draw(DrawHandle());
    EXPECT_FALSE(lastCommand<CommandRender>(cache).handle.isValid());
}

TEST(RenderCache, RecordsOneCommandOfTheRightClassForEachOperation)
{
    RenderCache cache;
    TextureHandle texture(1);
    const auto gfxState = std::make_shared<const GfxStateProperties>();
    const auto shaderState = std::make_shared<const ShaderStateCoreProperties>();
    TaskProperties task;
    task.task = std::make_shared<CountingTask>();
    cache.clearRenderTarget(RenderTargetHandle(1), ClearTargetProperties());
    EXPECT_EQ(lastCommand<CommandClearRT>(cache).handle, RenderTargetHandle(1));
    cache.updateRenderTarget(RenderTargetHandle(2), RenderTargetProperties());
    EXPECT_EQ(lastCommand<CommandUpdateRenderTarget>(cache).handle, RenderTargetHandle(2));
    cache.updateTexture(TextureHandle(3), TextureProperties());
    EXPECT_EQ(lastCommand<CommandUpdateTexture>(cache).handle, TextureHandle(3));
    cache.updateTextureBatchData(TextureHandle(4), TextureUpdateBatchDataProperties());
    EXPECT_EQ(lastCommand<CommandUpdateTextureBatchData>(cache).handle, TextureHandle(4));
    cache.generateMipmap(texture);
    EXPECT_EQ(lastCommand<CommandGenerateMipmap>(cache).handle, texture);
    cache.readbackTexture(texture);
    EXPECT_EQ(lastCommand<CommandReadbackTexture>(cache).handle, texture);
    cache.updateTextureImage(TextureImageHandle(5), TextureImageProperties());
    EXPECT_EQ(lastCommand<CommandUpdateTextureImage>(cache).handle, TextureImageHandle(5));
    cache.updateDraw(DrawHandle(6), gfxState, shaderState);
    EXPECT_EQ(lastCommand<CommandUpdateDraw>(cache).handle, DrawHandle(6));
    EXPECT_EQ(lastCommand<CommandUpdateDraw>(cache).gfxState, gfxState);
    EXPECT_EQ(lastCommand<CommandUpdateDraw>(cache).shaderState, shaderState);
    cache.draw(DrawHandle(7));
    EXPECT_EQ(lastCommand<CommandRender>(cache).handle, DrawHandle(7));
    ComputeProperties compute;
    compute.groups = SbVec3i32(4, 5, 6);
    cache.compute(shaderState, compute);
    EXPECT_EQ(lastCommand<CommandCompute>(cache).shaderState, shaderState);
    EXPECT_EQ(lastCommand<CommandCompute>(cache).properties, compute);
    cache.task(task);
    EXPECT_EQ(lastCommand<CommandTask>(cache).task, task);
    cache.renderTask(task, gfxState, ShaderStateProperties(), true);
    EXPECT_EQ(lastCommand<CommandRenderTask>(cache).task, task);
    EXPECT_EQ(lastCommand<CommandRenderTask>(cache).gfxState, gfxState);
    EXPECT_TRUE(lastCommand<CommandRenderTask>(cache).fixedFunctionState);
    cache.memoryBarrier(-1);
    EXPECT_EQ(lastCommand<CommandMemoryBarrier>(cache).barriers, -1);
    cache.beginQuery(QueryHandle(8));
    EXPECT_EQ(lastCommand<CommandBeginQuery>(cache).handle, QueryHandle(8));
    cache.endQuery(QueryHandle(9));
    EXPECT_EQ(lastCommand<CommandEndQuery>(cache).handle, QueryHandle(9));
    cache.askQueryResult(QueryHandle(10));
    EXPECT_EQ(lastCommand<CommandGetQueryResult>(cache).handle, QueryHandle(10));
    TransformFeedbackProperties feedback;
    feedback.varyings = {"position"};
    cache.beginTransformFeedback(feedback, ShaderStateProperties());
    EXPECT_EQ(lastCommand<CommandBeginTransformFeedback>(cache).properties, feedback);
    cache.endTransformFeedback();
    EXPECT_EQ(lastCommand<CommandEndTransformFeedback>(cache).name(), "EndTransformFeedback");
    cache.blit(RenderTargetHandle(11), RenderTargetHandle(12), BlitProperties());
    EXPECT_EQ(lastCommand<CommandBlit>(cache).source, RenderTargetHandle(11));
    EXPECT_EQ(lastCommand<CommandBlit>(cache).destination, RenderTargetHandle(12));
    EXPECT_EQ(cache.getCommandBufferSize(), 19u);
}

TEST(RenderCache, RecordsAllTypesOfShaderParameters)
{
    RenderCache cache;
    uint32_t id = 0;
    const auto record = [&cache, &id](auto properties)
    {
        using Properties = decltype(properties);
        properties.name = "uniform";
        cache.updateShaderParameter(ShaderParameterHandle(++id), properties);
        const auto& command = lastCommand<CommandUpdateShaderParameter<Properties>>(cache);
        EXPECT_EQ(command.handle, ShaderParameterHandle(id));
        EXPECT_EQ(command.properties, properties);
    };
#define RECORD_PARAMETER(PROPERTIES) record(PROPERTIES());
    RENDERENGINE_SHADER_PARAMETERS(RECORD_PARAMETER)
#undef RECORD_PARAMETER
    EXPECT_EQ(cache.getCommandBufferSize(), 19u);
}

TEST(RenderCache, KeepsATaskUntilReset)
{
    auto task = std::make_shared<CountingTask>();
    const std::weak_ptr<CountingTask> watch = task;
    RenderCache cache;
    cache.task(TaskProperties{task});
    task.reset();
    ASSERT_FALSE(watch.expired());
    EXPECT_EQ(watch.lock()->runs, 0);
    cache.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(RenderCache, CommandsOutliveTheCache)
{
    std::shared_ptr<CommandBuffer> submitted = std::make_shared<CommandBuffer>();
    {
        RenderCache cache;
        for (uint32_t i = 0; i < 5000; ++i)
        {
            cache.draw(DrawHandle(i));
        }
        submitted->append(*cache.getCommandBuffer());
    }
    std::thread render(
        [&submitted]
        {
            uint32_t expected = 0;
            for (const std::shared_ptr<CommandBase>& command : *submitted)
            {
                ASSERT_EQ(dynamic_cast<CommandRender&>(*command).handle.id, expected++);
            }
            submitted.reset();
        });
    render.join();
    EXPECT_EQ(submitted, nullptr);
}

TEST(RenderCache, KeepsWhatItHadWhenAPayloadCannotBeAllocated)
{
    RenderCache cache;
    cache.draw(DrawHandle(1));
    TextureProperties properties;
    const uint8_t pixel = 0;
    properties.compressed = 0;
    properties.type = 6;
    properties.width = 0xFFFFFFFFu;
    properties.height = 0x7FFFFFFFu;
    properties.data = {&pixel};
    EXPECT_THROW(cache.updateTexture(TextureHandle(1), properties), std::bad_alloc);
    EXPECT_EQ(drawIds(cache), (std::vector<uint32_t>{1}));
}

TEST(RenderCache, OnlyTheUpdatesAreVirtual)
{
    struct Observer : RenderCache
    {
        void updateShaderParameter(const ShaderParameterHandle&, const ShaderParameterProperties<float>&) override
        {
            ++parameters;
        }
        void updateDraw(const DrawHandle&, std::shared_ptr<const GfxStateProperties>,
                        std::shared_ptr<const ShaderStateCoreProperties>) override
        {
            ++draws;
        }
        using RenderCache::updateShaderParameter;

        int parameters = 0;
        int draws = 0;
    };
    Observer observer;
    RenderCache& cache = observer;
    cache.updateShaderParameter(ShaderParameterHandle(1), ShaderParameterProperties<float>());
    cache.updateDraw(DrawHandle(1), nullptr, nullptr);
    cache.updateShaderParameter(ShaderParameterHandle(1), ShaderParameterProperties<int>());
    EXPECT_EQ(observer.parameters, 1);
    EXPECT_EQ(observer.draws, 1);
    EXPECT_EQ(cache.getCommandBufferSize(), 1u);
    EXPECT_TRUE(std::has_virtual_destructor_v<RenderCache>);
}

} // namespace
