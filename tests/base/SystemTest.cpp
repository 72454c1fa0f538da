#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kavelor/SbElapsedTime.h>
#include <kavelor/SbProfiler.h>
#include <kavelor/SbThread.h>
#include <kavelor/SoDevice.h>
#include <kavelor/SoError.h>
#include <kavelor/SoKavelorBase.h>

namespace
{

using kavelor::helper::SbProfiler;
using kavelor::helper::SbProfilerHook;

TEST(SbThreadTest, JoinWaitsForTheFunction)
{
    std::uint64_t id = 0;
    const std::unique_ptr<SbThread> thread = SbThread::create([&id] { id = SbThread::getCurrentId(); });
    thread->join();
    thread->join();
    EXPECT_NE(id, 0u);
    EXPECT_NE(id, SbThread::getCurrentId());
    EXPECT_EQ(SbThread::getCurrentId(), SbThread::getCurrentId());
}

TEST(SbThreadTest, DestructionJoins)
{
    bool done = false;
    SbThread::create([&done] { done = true; }).reset();
    EXPECT_TRUE(done);
}

#if defined(__linux__)
TEST(SbThreadTest, NameIsCutTo15Bytes)
{
    std::string name;
    SbThread::create(
        [&name]
        {
            SbThread::setCurrentName("KVR_RenderThread_12345");
            std::ifstream("/proc/self/task/" + std::to_string(SbThread::getCurrentId()) + "/comm") >> name;
        })
        ->join();
    EXPECT_EQ(name, "KVR_RenderThrea");
}
#else
TEST(SbThreadTest, NamingRaisesNothingWithoutADebugger)
{
    bool survived = false;
    SbThread::create(
        [&survived]
        {
            SbThread::setCurrentName("KVR_RenderThread_12345");
            survived = true;
        })
        ->join();
    EXPECT_TRUE(survived);
}
#endif

TEST(SbElapsedTimeTest, CountsUpFromTheLastReset)
{
    SbElapsedTime timer;
    double previous = 0.0;
    while (previous <= 0.01)
    {
        const double now = timer.getElapsed();
        ASSERT_GE(now, previous);
        previous = now;
    }
    const SbElapsedTime unreset = timer;
    timer.reset();
    const double sinceReset = timer.getElapsed();
    EXPECT_GE(sinceReset, 0.0);
    EXPECT_GT(unreset.getElapsed(), sinceReset);
}

TEST(SoDeviceTest, SystemCountsAsVistaOrLater)
{
    int major = 0;
    int minor = -1;
    SoDevice::readSystemVersion(major, minor);
    EXPECT_GE(major, 6);
    EXPECT_GE(minor, 0);
}

TEST(SoKavelorBaseTest, InitAndFinishAreCounted)
{
    EXPECT_FALSE(SoKavelorBase::isInitialized());
    SoKavelorBase::init();
    SoKavelorBase::init();
    SoKavelorBase::finish();
    EXPECT_TRUE(SoKavelorBase::isInitialized());
    SoKavelorBase::finish();
    EXPECT_FALSE(SoKavelorBase::isInitialized());
}

TEST(SoKavelorBaseTest, FinishWithoutInitIsReportedAndChangesNothing)
{
    std::vector<std::string> functions;
    SoDebugError::setHandler([&functions](const SbString& function, const SbString&, SoDebugError::Severity)
                             { functions.push_back(function.toStdString()); });
    SoKavelorBase::finish();
    SoDebugError::setHandler({});
    EXPECT_EQ(functions, std::vector<std::string>{"SoKavelorBase::finish"});
    SoKavelorBase::init();
    EXPECT_TRUE(SoKavelorBase::isInitialized());
    SoKavelorBase::finish();
}

class RecordingHook : public SbProfilerHook
{
public:
    void beginZone(const char* label) override { events.push_back(std::string("begin ") + label); }
    void endZone(const char* label) override { events.push_back(std::string("end ") + label); }

    std::vector<std::string> events;
};

TEST(SbProfilerTest, ZonesNestByScope)
{
    RecordingHook hook;
    EXPECT_EQ(SbProfiler::setHook(&hook), nullptr);
    {
        const SbProfiler outer("frame");
        const SbProfiler inner("draw");
    }
    EXPECT_EQ(SbProfiler::setHook(nullptr), &hook);
    EXPECT_EQ(hook.events, (std::vector<std::string>{"begin frame", "begin draw", "end draw", "end frame"}));
}

TEST(SbProfilerTest, NothingIsCalledWhenOff)
{
    RecordingHook hook;
    SbProfiler::setHook(&hook);
    SbProfiler::setHook(nullptr);
    {
        const SbProfiler zone("frame");
    }
    EXPECT_TRUE(hook.events.empty());
}

TEST(SbProfilerTest, AnOpenZoneEndsWithTheHookItBeganWith)
{
    RecordingHook first;
    RecordingHook second;
    SbProfiler::setHook(&first);
    {
        const SbProfiler zone("frame");
        SbProfiler::setHook(&second);
    }
    SbProfiler::setHook(nullptr);
    EXPECT_EQ(first.events, (std::vector<std::string>{"begin frame", "end frame"}));
    EXPECT_TRUE(second.events.empty());
}

} // namespace
