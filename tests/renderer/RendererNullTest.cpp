#include "renderer/RendererNull.h"

#include "renderer/Task.h"

#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <array>

namespace renderengine
{
namespace
{

class OpenNull : public RendererNull
{
public:
    using RendererNull::RendererNull;
    bool getDebug() const { return m_debug; }
};

void runFrame(RendererBase& renderer)
{
    renderer.endFrame();
    renderer.execute();
}

TEST(RendererNullTest, NumbersOnlyRiseSinceNoneComesBack)
{
    RendererNull renderer(false);
    for (uint32_t i = 0; i < 100; ++i)
    {
        const BufferHandle buffer = renderer.createBuffer(BufferProperties());
        EXPECT_EQ(buffer, BufferHandle(i));
        const QueryHandle query = renderer.createQuery(0);
        EXPECT_EQ(query, QueryHandle(i));
        renderer.destroyBuffer(buffer);
        renderer.destroyQuery(query);
        runFrame(renderer);
    }
}

TEST(RendererNullTest, EachConceptHasNumbersOfItsOwn)
{
    RendererNull renderer(false);
    EXPECT_EQ(renderer.generateDrawHandle().id, 0u);
    EXPECT_EQ(renderer.generateDrawPropertiesHandle().id, 0u);
    EXPECT_EQ(renderer.generateBufferHandle().id, 0u);
    EXPECT_EQ(renderer.generateVertexBufferHandle().id, 0u);
    EXPECT_EQ(renderer.generateIndexBufferHandle().id, 0u);
    EXPECT_EQ(renderer.generateShaderBufferHandle().id, 0u);
    EXPECT_EQ(renderer.generateTextureImageHandle().id, 0u);
    EXPECT_EQ(renderer.generateSamplerHandle().id, 0u);
    EXPECT_EQ(renderer.generateTextureHandle().id, 0u);
    EXPECT_EQ(renderer.generateRenderTargetHandle().id, 0u);
    EXPECT_EQ(renderer.generateViewportHandle().id, 0u);
    EXPECT_EQ(renderer.generateShaderObjectHandle().id, 0u);
    EXPECT_EQ(renderer.generateShaderProgramHandle().id, 0u);
    EXPECT_EQ(renderer.generateShaderParameterHandle().id, 0u);
    EXPECT_EQ(renderer.generateQueryHandle().id, 0u);
    EXPECT_EQ(renderer.generateDrawHandle().id, 1u);
    EXPECT_EQ(renderer.generateQueryHandle().id, 1u);
}

TEST(RendererNullTest, AReadbackLeavesTheClientsMemoryAsItWas)
{
    RendererNull renderer(false);
    TextureHandle texture = renderer.createTexture(TextureProperties());
    const auto cache = std::make_shared<RenderCache>();
    cache->readbackTexture(texture);
    renderer.submit(cache);
    runFrame(renderer);
    std::array<unsigned char, 4> pixels = {1, 2, 3, 4};
    renderer.readbackTexture(texture, pixels.data(), pixels.size());
    EXPECT_EQ(pixels, (std::array<unsigned char, 4>{1, 2, 3, 4}));
}

TEST(RendererNullTest, NoTaskRuns)
{
    RendererNull renderer(false);
    int runs = 0;
    const TaskProperties task = testing::makeTask([&runs] { ++runs; });
    renderer.addTask(task);
    renderer.addEndTask(task);
    const auto cache = std::make_shared<RenderCache>();
    cache->task(task);
    cache->renderTask(task, nullptr, ShaderStateProperties(), true);
    renderer.submit(cache);
    runFrame(renderer);
    EXPECT_EQ(runs, 0);
}

TEST(RendererNullTest, AQueryResultIsTheValueOfTheInvalidHandle)
{
    RendererNull renderer(false);
    const QueryHandle query = renderer.createQuery(0);
    const auto cache = std::make_shared<RenderCache>();
    cache->beginQuery(query);
    cache->endQuery(query);
    cache->askQueryResult(query);
    renderer.submit(cache);
    runFrame(renderer);
    EXPECT_EQ(renderer.getQueryResult(query), 0u);
    EXPECT_EQ(renderer.getQueryResult(query), renderer.getQueryResult(QueryHandle()));
}

TEST(RendererNullTest, AMappedBufferIsNull)
{
    RendererNull renderer(false);
    const BufferHandle buffer = renderer.createBuffer(BufferProperties());
    renderer.mapBuffer(buffer, 0, 1, 0);
    renderer.executeResourceCommands();
    EXPECT_EQ(renderer.getMappedBufferPointer(buffer), nullptr);
}

TEST(RendererNullTest, CannotPresent)
{
    RendererNull renderer(false);
    EXPECT_FALSE(renderer.canPresent());
    EXPECT_FALSE(renderer.present());
    EXPECT_EQ(renderer.getPresentFrame(), nullptr);
    EXPECT_EQ(renderer.getReversePresentFrame(), nullptr);
    EXPECT_EQ(renderer.updatePresentEventArg(), nullptr);
}

TEST(RendererNullTest, NeverHasTheDebugFlag)
{
    EXPECT_FALSE(OpenNull(true).getDebug());
    EXPECT_FALSE(OpenNull(false).getDebug());
}

TEST(RendererNullTest, EveryCommandIsDispatchedAndChangesNothing)
{
    RendererNull renderer(false);
    RendererBase& base = renderer;
#define RENDERENGINE_RUN(COMMAND) \
    {                             \
        COMMAND command;          \
        command.execute(base);    \
    }
    RENDERENGINE_COMMANDS(RENDERENGINE_RUN)
#undef RENDERENGINE_RUN
    CommandDestroyBuffer destroy;
    destroy.set(BufferHandle(3));
    destroy.execute(base);
    EXPECT_EQ(destroy.handle, BufferHandle(3));
}

TEST(RendererNullTest, ARunDropsTheCommands)
{
    RendererNull renderer(false);
    bool dropped = false;
    renderer.addTask(testing::makeTask([guard = std::shared_ptr<void>(nullptr, [&](void*) { dropped = true; })] {}));
    EXPECT_FALSE(dropped);
    runFrame(renderer);
    EXPECT_TRUE(dropped);
}

} // namespace
} // namespace renderengine
