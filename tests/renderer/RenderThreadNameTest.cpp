#include "context/ContextFactory.h"
#include "context/FakeContext.h"
#include "renderer/Task.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace renderengine
{
namespace
{

TEST(RenderThreadTest, HasANameForDebuggers)
{
    testing::Trace trace;
    testing::FakeContext context(ContextMultithread, trace, new testing::RecordingRenderer(trace));
    context.init();
    char name[16] = {};
    context.addTask(testing::makeTask([&name] { pthread_getname_np(pthread_self(), name, sizeof(name)); }));
    context.execute(true);
    EXPECT_STREQ(name, "KVR_RenderThrea"); // as much of it as the system takes
}

} // namespace
} // namespace renderengine
