#include "renderer/Task.h"
#include "context/Roads.h"

#include <renderengine/RenderCache.h>

#include <gtest/gtest.h>

#include <thread>

namespace renderengine
{
namespace
{

using testing::Lines;
using testing::Road;

class TaskRoadTest : public testing::RoadTest
{
protected:
    TaskProperties task(const std::string& line)
    {
        return testing::makeTask([this, line] { m_trace.add(line); });
    }
};
INSTANTIATE_TEST_SUITE_P(Road, TaskRoadTest, ::testing::Values(Road::Inline, Road::Thread), testing::roadName);

TEST_P(TaskRoadTest, HeadTasksRunInOrderAheadOfTheFirstBufferWhenNoSubmissionFollows)
{
    auto cache = std::make_shared<RenderCache>();
    cache->draw(DrawHandle(1));
    m_context->submit(cache);
    m_context->addTask(task("a"));
    m_context->addTask(task("b"));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(),
              runAndFinish({"begin", "CommandTask", "a", "CommandTask", "b", "CommandRender 1", "finish"}));
}

TEST_P(TaskRoadTest, HeadTasksRunInsideTheBufferOfTheNextSubmission)
{
    auto cache = std::make_shared<RenderCache>();
    cache->draw(DrawHandle(1));
    m_context->submit(cache);
    m_context->addTask(task("a"));
    m_context->addTask(task("b"));
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandRender 1", "CommandTask", "a", "CommandTask", "b",
                                            "CommandRender 1", "finish"}));
}

TEST_P(TaskRoadTest, AnEndTaskRunsBetweenTheDestroysRecordedBeforeAndBehindIt)
{
    m_context->destroyBuffer(BufferHandle(1));
    m_context->addEndTask(task("end"));
    m_context->destroyBuffer(BufferHandle(2));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandDestroyBuffer 1", "CommandTask", "end",
                                            "CommandDestroyBuffer 2", "finish"}));
}

TEST_P(TaskRoadTest, ACachedTaskRunsOncePerSubmission)
{
    int runs = 0;
    const auto cache = std::make_shared<RenderCache>();
    cache->task(testing::makeTask([&runs] { ++runs; }));
    m_context->submit(cache);
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(runs, 2);
    m_context->submit(cache);
    m_context->execute(true);
    EXPECT_EQ(runs, 3);
}

TEST_P(TaskRoadTest, ATaskOfACacheThatIsNeverSubmittedNeverRunsAndLivesUntilReset)
{
    bool dropped = false;
    int runs = 0;
    const auto cache = std::make_shared<RenderCache>();
    cache->task(testing::makeTask([&runs, guard = std::shared_ptr<void>(nullptr, [&dropped](void*) { dropped = true; })]
                                  { ++runs; }));
    m_context->execute(true);
    EXPECT_EQ(runs, 0);
    EXPECT_FALSE(dropped);
    cache->reset();
    EXPECT_TRUE(dropped);
}

TEST_P(TaskRoadTest, ATaskIsSharedUntilItsFrameHasRun)
{
    bool dropped = false;
    m_context->addTask(
        testing::makeTask([guard = std::shared_ptr<void>(nullptr, [&dropped](void*) { dropped = true; })] {}));
    EXPECT_FALSE(dropped);
    m_context->execute(true);
    EXPECT_TRUE(dropped);
}

TEST_P(TaskRoadTest, RenderTaskOfTheContextRunsAtOnceOnTheCallingThreadAndBypassesEveryList)
{
    m_context->createBuffer(BufferProperties());
    m_context->createQuery(0);
    m_context->renderTask(task("never"), nullptr, ShaderStateProperties(), true);
    EXPECT_EQ(m_trace.take(), (Lines{"CommandRenderTask"}));
}

TEST_P(TaskRoadTest, RenderTaskMayBeCalledInsideATask)
{
    m_context->addTask(testing::makeTask(
        [this]
        {
            m_trace.add("outer");
            m_context->renderTask(task("never"), nullptr, ShaderStateProperties(), false);
        }));
    m_context->execute(true);
    EXPECT_EQ(m_trace.take(), runAndFinish({"begin", "CommandTask", "outer", "CommandRenderTask", "finish"}));
}

/// Keeps what a render task carries.
class RenderTaskRenderer : public testing::RecordingRenderer
{
public:
    using RecordingRenderer::execute;
    using RecordingRenderer::RecordingRenderer;
    void execute(CommandRenderTask& command) override
    {
        m_task = command.task;
        m_gfxState = command.gfxState;
        m_program = command.shaderState.program;
        m_fixedFunctionState = command.fixedFunctionState;
        m_thread = std::this_thread::get_id();
    }
    TaskProperties m_task;
    std::shared_ptr<const GfxStateProperties> m_gfxState;
    ShaderProgramHandle m_program;
    bool m_fixedFunctionState = false;
    std::thread::id m_thread;
};

TEST(ContextRenderTaskTest, CarriesItsFourArguments)
{
    testing::Trace trace;
    auto* renderer = new RenderTaskRenderer(trace);
    testing::FakeContext context(ContextShare | ContextMultithread, trace, renderer);
    context.init();
    const TaskProperties task = testing::makeTask([] {});
    const auto gfxState = std::make_shared<const GfxStateProperties>();
    ShaderStateProperties shaderState;
    shaderState.program = ShaderProgramHandle(6);
    context.renderTask(task, gfxState, shaderState, true);
    EXPECT_EQ(renderer->m_task, task);
    EXPECT_EQ(renderer->m_gfxState, gfxState);
    EXPECT_EQ(renderer->m_program, ShaderProgramHandle(6));
    EXPECT_TRUE(renderer->m_fixedFunctionState);
    EXPECT_EQ(renderer->m_thread, std::this_thread::get_id());
}

} // namespace
} // namespace renderengine
