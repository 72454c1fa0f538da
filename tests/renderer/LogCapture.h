#pragma once

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <sstream>
#include <string>

namespace renderengine::testing
{

/// While it lives, what goes to the default logger ends here as bare text, trace level included.
class LogCapture
{
public:
    LogCapture() : m_former(spdlog::default_logger())
    {
        auto logger = std::make_shared<spdlog::logger>("", std::make_shared<spdlog::sinks::ostream_sink_mt>(m_stream));
        // The same end of line on every system.
        logger->set_formatter(
            std::make_unique<spdlog::pattern_formatter>("%v", spdlog::pattern_time_type::local, "\n"));
        logger->set_level(spdlog::level::trace);
        spdlog::set_default_logger(logger);
    }
    ~LogCapture() { spdlog::set_default_logger(m_former); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The lines so far, each with its end of line, which are then forgotten.
    std::string take()
    {
        std::string text = m_stream.str();
        m_stream.str("");
        return text;
    }

private:
    std::shared_ptr<spdlog::logger> m_former;
    std::ostringstream m_stream;
};

} // namespace renderengine::testing
