#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kavelor/SoError.h>
#include <kavelor/SoPreferences.h>
#include <spdlog/details/os.h>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include "log/CallbackSink.h"
#include "log/Logging.h"

namespace renderengine
{

namespace
{

/// Collects what reaches the error reporter. The set-up happens once in a process, so every case needs a process of its
/// own.
class LoggingTest : public testing::Test
{
protected:
    LoggingTest()
    {
        SoError::setHandler(
            [this](const SbString& message)
            {
                const std::lock_guard<std::mutex> lock(m_mutex);
                m_reported.push_back(message.toStdString());
            });
    }

    ~LoggingTest() override { SoError::setHandler({}); }

    /// Captures the standard output and gives the process the default logger it starts with, on the captured output:
    /// on Windows a console sink keeps the handle that it was made with.
    static void captureConsole()
    {
        testing::internal::CaptureStdout();
        spdlog::set_default_logger(
            std::make_shared<spdlog::logger>("", std::make_shared<spdlog::sinks::stdout_color_sink_mt>()));
    }

    static std::string capturedConsole() { return testing::internal::GetCapturedStdout(); }

    /// A line as the error reporter gets it.
    static std::string line(const std::string& text) { return text + spdlog::details::os::default_eol; }

    /// One message a level, by the free functions.
    static void logEveryLevel()
    {
        spdlog::trace("t");
        spdlog::debug("d");
        spdlog::info("i");
        spdlog::warn("w");
        spdlog::error("e");
        spdlog::critical("c");
    }

    void expectLevel(const char* setting, spdlog::level::level_enum level)
    {
        SoPreferences::setString("KVR_RENDERENGINE_LOG_LEVEL", setting);
        initLogging();
        EXPECT_EQ(spdlog::get_level(), level);
        logEveryLevel();
        const std::vector<std::string> all = {line("RenderEngine: [trace] t"), line("RenderEngine: [debug] d"),
                                              line("RenderEngine: [info] i"),  line("RenderEngine: [warning] w"),
                                              line("RenderEngine: [error] e"), line("RenderEngine: [critical] c")};
        EXPECT_EQ(m_reported, std::vector<std::string>(all.begin() + level, all.end()));
    }

    std::vector<std::string> m_reported;

private:
    std::mutex m_mutex;
};

using Lines = std::vector<std::string>;

TEST_F(LoggingTest, LinesReachTheErrorReporterByDefault)
{
    captureConsole();
    initLogging();
    spdlog::error("buffer {} of {}", 3, "seven");
    EXPECT_EQ(m_reported, Lines{line("RenderEngine: [error] buffer 3 of seven")});
    EXPECT_EQ(capturedConsole(), "");
}

TEST_F(LoggingTest, DefaultLoggerIsNamedAndRegistered)
{
    initLogging();
    EXPECT_EQ(spdlog::default_logger()->name(), "kvr_log");
    EXPECT_EQ(spdlog::get("kvr_log"), spdlog::default_logger());
    ASSERT_EQ(spdlog::default_logger()->sinks().size(), 1u);
    EXPECT_NE(dynamic_cast<sinks::callback_sink_mt*>(spdlog::default_logger()->sinks()[0].get()), nullptr);
}

TEST_F(LoggingTest, DefaultLevelIsWarning)
{
    initLogging();
    logEveryLevel();
    EXPECT_EQ(m_reported, (Lines{line("RenderEngine: [warning] w"), line("RenderEngine: [error] e"),
                                 line("RenderEngine: [critical] c")}));
}

TEST_F(LoggingTest, LevelTrace)
{
    expectLevel("TRACE", spdlog::level::trace);
}

TEST_F(LoggingTest, LevelDebug)
{
    expectLevel("DEBUG", spdlog::level::debug);
}

TEST_F(LoggingTest, LevelInfo)
{
    expectLevel("INFO", spdlog::level::info);
}

TEST_F(LoggingTest, LevelWarning)
{
    expectLevel("WARNING", spdlog::level::warn);
}

TEST_F(LoggingTest, LevelError)
{
    expectLevel("ERROR", spdlog::level::err);
}

TEST_F(LoggingTest, LevelFatalIsCritical)
{
    expectLevel("FATAL", spdlog::level::critical);
}

TEST_F(LoggingTest, LevelCritical)
{
    expectLevel("CRITICAL", spdlog::level::critical);
}

TEST_F(LoggingTest, LowerCaseWarningGivesWarning)
{
    expectLevel("warning", spdlog::level::warn);
}

TEST_F(LoggingTest, LowerCaseDebugGivesWarningToo)
{
    expectLevel("debug", spdlog::level::warn);
}

TEST_F(LoggingTest, UnknownLevelGivesWarning)
{
    expectLevel("OFF", spdlog::level::warn);
}

TEST_F(LoggingTest, LogTypeOneWritesToStandardOutputAndReportsNothing)
{
    SoPreferences::setInt("KVR_RENDERENGINE_LOG_TYPE", 1);
    captureConsole();
    initLogging();
    logEveryLevel();
    EXPECT_EQ(capturedConsole(), "RenderEngine: [warning] w\nRenderEngine: [error] e\nRenderEngine: [critical] c\n");
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(LoggingTest, LogTypeOneKeepsTheColouredConsoleLogger)
{
    SoPreferences::setInt("KVR_RENDERENGINE_LOG_TYPE", 1);
    const std::shared_ptr<spdlog::logger> console = spdlog::default_logger();
    initLogging();
    EXPECT_EQ(spdlog::default_logger(), console);
    ASSERT_EQ(console->sinks().size(), 1u);
    EXPECT_NE(dynamic_cast<spdlog::sinks::stdout_color_sink_mt*>(console->sinks()[0].get()), nullptr);
}

TEST_F(LoggingTest, AnyOtherLogTypeCountsAsOne)
{
    SoPreferences::setInt("KVR_RENDERENGINE_LOG_TYPE", -7);
    captureConsole();
    initLogging();
    spdlog::error("e");
    EXPECT_EQ(capturedConsole(), "RenderEngine: [error] e\n");
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(LoggingTest, LogRendererTracesWithoutPrefixWhateverTheOtherSettingsSay)
{
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "LOG");
    SoPreferences::setString("KVR_RENDERENGINE_LOG_LEVEL", "CRITICAL");
    SoPreferences::setInt("KVR_RENDERENGINE_LOG_TYPE", 0);
    captureConsole();
    initLogging();
    logEveryLevel();
    EXPECT_EQ(capturedConsole(), "t\nd\ni\nw\ne\nc\n");
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(LoggingTest, LogRendererReadsNoOtherSetting)
{
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "log");
    initLogging();
    EXPECT_EQ(spdlog::get_level(), spdlog::level::trace);
    std::vector<std::string> asked;
    for (const SoPreferences::AskedKey& key : SoPreferences::getAskedKeys())
    {
        asked.push_back(key.name.toStdString());
    }
    EXPECT_EQ(asked, Lines{"KVR_RENDERENGINE_RENDERER"});
}

TEST_F(LoggingTest, SecondSetUpChangesNothing)
{
    initLogging();
    const std::shared_ptr<spdlog::logger> logger = spdlog::default_logger();
    SoPreferences::setString("KVR_RENDERENGINE_LOG_LEVEL", "TRACE");
    SoPreferences::setInt("KVR_RENDERENGINE_LOG_TYPE", 1);
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "LOG");
    initLogging();
    EXPECT_EQ(spdlog::default_logger(), logger);
    EXPECT_EQ(spdlog::get_level(), spdlog::level::warn);
    spdlog::warn("w");
    EXPECT_EQ(m_reported, Lines{line("RenderEngine: [warning] w")});
}

TEST_F(LoggingTest, SecondSetUpAfterTraceModeChangesNothing)
{
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "LOG");
    captureConsole();
    initLogging();
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "GL");
    initLogging();
    EXPECT_EQ(spdlog::get_level(), spdlog::level::trace);
    spdlog::trace("t");
    EXPECT_EQ(capturedConsole(), "t\n");
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(LoggingTest, DoubledPercentSignIsReadAsFormat)
{
    initLogging();
    spdlog::error("100%% of {}", "it%%");
    EXPECT_EQ(m_reported, Lines{line("RenderEngine: [error] 100% of it%")});
}

TEST_F(LoggingTest, ConversionInAMessageReadsNoArgument)
{
    initLogging();
    spdlog::error("{}", "%s%n%d");
    EXPECT_EQ(m_reported, Lines{line("RenderEngine: [error] %s%n%d")});
}

TEST_F(LoggingTest, MessageThatFailsToFormatGoesToTheErrorHandlerOfSpdlog)
{
    initLogging();
    std::vector<std::string> failures;
    spdlog::default_logger()->set_error_handler([&failures](const std::string& reason) { failures.push_back(reason); });
    spdlog::error(fmt::runtime("{} {}"), 1);
    spdlog::error("after");
    EXPECT_EQ(failures.size(), 1u);
    EXPECT_EQ(m_reported, Lines{line("RenderEngine: [error] after")});
}

TEST_F(LoggingTest, LinesOfSeveralThreadsArriveWhole)
{
    initLogging();
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            [t]
            {
                for (int i = 0; i < 250; ++i)
                {
                    spdlog::error("thread {} line {}", t, i);
                }
            });
    }
    Lines expected;
    expected.reserve(1000);
    for (int t = 0; t < 4; ++t)
    {
        threads[static_cast<std::size_t>(t)].join();
        for (int i = 0; i < 250; ++i)
        {
            expected.push_back(line(fmt::format("RenderEngine: [error] thread {} line {}", t, i)));
        }
    }
    EXPECT_THAT(m_reported, testing::UnorderedElementsAreArray(expected));
}

} // namespace

} // namespace renderengine
