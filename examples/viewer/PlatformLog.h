#pragma once

#include <kavelor/SoError.h>

#include <mutex>
#include <string>
#include <vector>

namespace viewer
{

/// While it lives, the engine's log is raised to the level at which it tells its choice of platform, and those lines
/// are kept instead of shown. Warnings and errors go on to where they went before.
class PlatformLog
{
public:
    PlatformLog();
    ~PlatformLog();
    PlatformLog(const PlatformLog&) = delete;
    PlatformLog& operator=(const PlatformLog&) = delete;

    /// One sentence a platform: which was taken, and why those tried before were not.
    std::vector<std::string> lines() const;

private:
    void take(const std::string& message);

    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
    SoError::Handler m_former;
};

} // namespace viewer
