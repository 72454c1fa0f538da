#pragma once

#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace renderengine::testing
{

/// While it lives, what goes to the default logger is kept as "level: text", one entry a message, every level included.
class LogLines
{
public:
    LogLines() : m_former(spdlog::default_logger()), m_sink(std::make_shared<Sink>())
    {
        auto logger = std::make_shared<spdlog::logger>("", m_sink);
        logger->set_level(spdlog::level::trace);
        spdlog::set_default_logger(logger);
    }
    ~LogLines() { spdlog::set_default_logger(m_former); }
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    /// The messages so far, which are then forgotten.
    std::vector<std::string> take() { return std::exchange(m_sink->lines, {}); }

private:
    class Sink : public spdlog::sinks::base_sink<std::mutex>
    {
    public:
        std::vector<std::string> lines;

    protected:
        void sink_it_(const spdlog::details::log_msg& message) override
        {
            const auto level = spdlog::level::to_string_view(message.level);
            lines.push_back(std::string(level.data(), level.size()) + ": " +
                            std::string(message.payload.data(), message.payload.size()));
        }
        void flush_() override {}
    };

    std::shared_ptr<spdlog::logger> m_former;
    std::shared_ptr<Sink> m_sink;
};

} // namespace renderengine::testing
