#include "support/ScriptedPlatform.h"

#include <renderengine/GLUtils.h>

#include <glbinding/RecordingGL.h>
#include <gtest/gtest.h>
#include <kavelor/SoError.h>
#include <kavelor/SoPreferences.h>
#include <spdlog/details/os.h>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <string>
#include <vector>

namespace renderengine
{
namespace
{

/// The library's own start, on a platform without a device. Each case needs a process of its own.
class InitTest : public ::testing::Test
{
protected:
    InitTest()
    {
        // What the binding asks for to find that it works.
        m_platform.glFunction = [](const char* name) -> void*
        {
            const GLEWContextStruct& table = *glbinding::RecordingGL::table();
            const std::string wanted = name;
            if (wanted == "glGetString")
            {
                return reinterpret_cast<void*>(table.kvr_common__glewGetString);
            }
            if (wanted == "glGetStringi")
            {
                return reinterpret_cast<void*>(table.kvr_common__glewGetStringi);
            }
            return wanted == "glGetIntegerv" ? reinterpret_cast<void*>(table.kvr_common__glewGetIntegerv) : nullptr;
        };
        SoError::setHandler([this](const SbString& message) { m_reported.push_back(message.toStdString()); });
    }
    ~InitTest() override { SoError::setHandler({}); }

    static std::string line(const std::string& text) { return text + spdlog::details::os::default_eol; }

    std::vector<std::string> m_reported;
    ScriptedPlatform m_platform;
    glbinding::RecordingGL m_gl;
};

TEST_F(InitTest, ASecondInitChangesNothingEvenWhenTheSettingsChangedInBetween)
{
    init();
    const std::shared_ptr<spdlog::logger> logger = spdlog::default_logger();
    EXPECT_EQ(logger->name(), "kvr_log");
    EXPECT_EQ(spdlog::get_level(), spdlog::level::warn);
    EXPECT_EQ(m_reported, std::vector<std::string>());
    m_platform.takeCalls();

    SoPreferences::setString("KVR_RENDERENGINE_LOG_LEVEL", "TRACE");
    SoPreferences::setInt("KVR_RENDERENGINE_LOG_TYPE", 1);
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "LOG");
    init();
    EXPECT_EQ(spdlog::default_logger(), logger);
    EXPECT_EQ(m_platform.takeCalls(), std::vector<std::string>());
    EXPECT_EQ(spdlog::get_level(), spdlog::level::warn);
    spdlog::trace("t");
    spdlog::info("i");
    spdlog::warn("w");
    EXPECT_EQ(m_reported, std::vector<std::string>{line("RenderEngine: [warning] w")});
    finish();
}

TEST_F(InitTest, ASecondInitLeavesTheBareTraceAsItIs)
{
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "LOG");
    ::testing::internal::CaptureStdout();
    spdlog::set_default_logger(
        std::make_shared<spdlog::logger>("", std::make_shared<spdlog::sinks::stdout_color_sink_mt>()));
    init();
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "GL");
    SoPreferences::setString("KVR_RENDERENGINE_LOG_LEVEL", "ERROR");
    init();
    spdlog::trace("t");
    finish();
    EXPECT_EQ(spdlog::get_level(), spdlog::level::trace);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "t\n");
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(InitTest, FinishLeavesTheLoggerAlone)
{
    init();
    const std::shared_ptr<spdlog::logger> logger = spdlog::default_logger();
    finish();
    EXPECT_EQ(spdlog::default_logger(), logger);
    m_reported.clear();
    spdlog::error("e");
    EXPECT_EQ(m_reported, std::vector<std::string>{line("RenderEngine: [error] e")});
}

} // namespace
} // namespace renderengine
