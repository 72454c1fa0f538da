#include "PlatformLog.h"

#include <kavelor/SoPreferences.h>

#include <iostream>

namespace viewer
{

namespace
{

constexpr const char* c_levelKey = "KVR_RENDERENGINE_LOG_LEVEL";

} // namespace

PlatformLog::PlatformLog()
{
    SoPreferences::setString(c_levelKey, "INFO");
    m_former = SoError::setHandler([this](const SbString& message) { take(message.toStdString()); });
}

PlatformLog::~PlatformLog()
{
    SoError::setHandler(m_former);
    SoPreferences::unset(c_levelKey);
}

std::vector<std::string> PlatformLog::lines() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
}

void PlatformLog::take(const std::string& message)
{
    static const std::string mark = "[info] Platform: ";
    const std::size_t place = message.find(mark);
    if (place != std::string::npos)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::size_t begin = place + mark.size();
        m_lines.push_back(message.substr(begin, message.find_last_not_of("\r\n") + 1 - begin));
    }
    else if (message.find("[info]") == std::string::npos)
    {
        std::cerr << message;
    }
}

} // namespace viewer
