#pragma once

#include <kavelor/SoError.h>

#include <string>
#include <vector>

namespace renderengine::testing
{

/// While it lives, what goes to SoDebugError ends here as "error|info function: message".
class DebugErrors
{
public:
    DebugErrors()
        : m_former(SoDebugError::setHandler(
              [this](const SbString& function, const SbString& message, SoDebugError::Severity severity)
              {
                  const std::string kind = severity == SoDebugError::Severity::Error ? "error " : "info ";
                  m_messages.push_back(kind + function.toStdString() + ": " + message.toStdString());
              }))
    {
    }
    ~DebugErrors() { SoDebugError::setHandler(m_former); }
    DebugErrors(const DebugErrors&) = delete;
    DebugErrors& operator=(const DebugErrors&) = delete;

    const std::vector<std::string>& messages() const { return m_messages; }

private:
    std::vector<std::string> m_messages;
    SoDebugError::Handler m_former;
};

} // namespace renderengine::testing
