#include "log/Logging.h"

#include <memory>
#include <string>

#include <kavelor/SbString.h>
#include <kavelor/SoError.h>
#include <kavelor/SoPreferences.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/spdlog.h>

#include "log/CallbackSink.h"

namespace renderengine
{

namespace
{

bool s_loggerInitialized = false;

spdlog::level::level_enum levelFromName(const SbString& name)
{
    struct Row
    {
        const char* name;
        spdlog::level::level_enum level;
    };
    static constexpr Row rows[] = {
        {"TRACE", spdlog::level::trace}, {"DEBUG", spdlog::level::debug},    {"INFO", spdlog::level::info},
        {"ERROR", spdlog::level::err},   {"FATAL", spdlog::level::critical}, {"CRITICAL", spdlog::level::critical},
    };
    for (const Row& row : rows)
    {
        if (name == row.name)
        {
            return row.level;
        }
    }
    return spdlog::level::warn;
}

/// Makes the default logger hand its lines to the toolkit's error reporter.
void routeToErrorReporter(const std::shared_ptr<spdlog::pattern_formatter>& patternFmt)
{
    const auto callbackLoggerFunc = [](spdlog::pattern_formatter& formatter, const spdlog::details::log_msg& message)
    {
        spdlog::memory_buf_t buffer;
        formatter.format(message, buffer);
        const std::string text(buffer.data(), buffer.size());
        // The text is the format: a doubled percent sign in a message comes out single.
        SoError::post(text.c_str());
    };
    // The sink's mutex also guards the formatter, which keeps state between two messages.
    const auto kvr_sink = std::make_shared<sinks::callback_sink_mt>(
        [callbackLoggerFunc, patternFmt](const spdlog::details::log_msg& message)
        { callbackLoggerFunc(*patternFmt, message); });
    const auto logger = std::make_shared<spdlog::logger>("kvr_log", kvr_sink);
    spdlog::register_logger(logger);
    spdlog::set_default_logger(logger);
}

} // namespace

void initLogging()
{
    if (s_loggerInitialized)
    {
        return;
    }
    const char* const pattern = "RenderEngine: [%^%l%$] %v";
    const auto patternFmt = std::make_shared<spdlog::pattern_formatter>(pattern);
    if (SoPreferences::getString("KVR_RENDERENGINE_RENDERER", "GL").upper() == "LOG")
    {
        // The trace of the commands is compared as it is, so nothing may stand before it.
        spdlog::set_level(spdlog::level::trace);
        spdlog::set_pattern("%v");
    }
    else
    {
        if (SoPreferences::getInt("KVR_RENDERENGINE_LOG_TYPE", 0) != 0)
        {
            spdlog::set_pattern(pattern);
        }
        else
        {
            routeToErrorReporter(patternFmt);
        }
        const SbString logLevelStr = SoPreferences::getString("KVR_RENDERENGINE_LOG_LEVEL", "WARNING");
        spdlog::set_level(levelFromName(logLevelStr));
    }
    s_loggerInitialized = true;
}

} // namespace renderengine
