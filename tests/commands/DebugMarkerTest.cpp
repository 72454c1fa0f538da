// Each operation keeps the setting for the life of the process at its first call, so each case runs in a process of its
// own and sets the setting first.

#include <iterator>

#include <gtest/gtest.h>

#include <kavelor/SoPreferences.h>

#include <renderengine/RenderCache.h>

#include "commands/CommandBuffer.h"
#include "commands/DebugMarkerCommands.h"

namespace
{

using namespace renderengine;

const char* const Setting = "KVR_DEBUG_GROUP";

TEST(DebugMarker, RecordsNothingByDefault)
{
    SoPreferences::unset(Setting);
    RenderCache cache;
    cache.pushDebugMarker("scene");
    EXPECT_EQ(cache.getCommandBufferSize(), 0u);
    cache.popDebugMarker();
    EXPECT_EQ(cache.getCommandBufferSize(), 0u);
}

TEST(DebugMarker, RecordsWhenTheSettingIsOn)
{
    SoPreferences::setBool(Setting, true);
    RenderCache cache;
    cache.pushDebugMarker("scene");
    cache.popDebugMarker();
    ASSERT_EQ(cache.getCommandBufferSize(), 2u);
    const auto buffer = cache.getCommandBuffer();
    const auto* const push = dynamic_cast<const CommandPushDebugMarker*>(buffer->begin()->get());
    ASSERT_NE(push, nullptr);
    EXPECT_EQ(push->text, "scene");
    const auto* const pop = dynamic_cast<const CommandPopDebugMarker*>(std::next(buffer->begin())->get());
    ASSERT_NE(pop, nullptr);
    EXPECT_EQ(pop->text, "");
}

TEST(DebugMarker, KeepsTheSettingOfTheFirstCallForEachOperation)
{
    SoPreferences::setBool(Setting, true);
    RenderCache cache;
    cache.pushDebugMarker("first");
    SoPreferences::setBool(Setting, false);
    cache.pushDebugMarker("second");
    EXPECT_EQ(cache.getCommandBufferSize(), 2u);
    cache.popDebugMarker();
    EXPECT_EQ(cache.getCommandBufferSize(), 2u);
    SoPreferences::setBool(Setting, true);
    cache.popDebugMarker();
    EXPECT_EQ(cache.getCommandBufferSize(), 2u);
}

} // namespace
