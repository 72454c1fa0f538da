#include "MergeLog.h"

#include <kavelor/SoPreferences.h>

#include <iostream>
#include <utility>

namespace viewer
{

namespace
{

constexpr const char* c_explainKey = "KVR_RENDERENGINE_EXPLAIN_MERGING";
constexpr const char* c_levelKey = "KVR_RENDERENGINE_LOG_LEVEL";

} // namespace

MergeLog::MergeLog(bool passOn) : m_passOn(passOn)
{
    SoPreferences::setBool(c_explainKey, true);
    SoPreferences::setString(c_levelKey, "INFO");
    m_former = SoError::setHandler([this](const SbString& message) { take(message); });
}

MergeLog::~MergeLog()
{
    SoError::setHandler(m_former);
    SoPreferences::unset(c_levelKey);
    SoPreferences::unset(c_explainKey);
}

std::vector<std::string> MergeLog::takeLines()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_lines, {});
}

void MergeLog::take(const SbString& message)
{
    static const std::string mark = "[info] Merging: ";
    const std::string& text = message.toStdString();
    const std::size_t place = text.find(mark);
    if (place != std::string::npos)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::size_t begin = place + mark.size();
        m_lines.push_back(text.substr(begin, text.find_last_not_of("\r\n") + 1 - begin));
    }
    else if (m_passOn)
    {
        m_former(message);
    }
    else if (text.find("[info]") == std::string::npos)
    {
        std::cerr << text;
    }
}

} // namespace viewer
