#pragma once

#include <kavelor/SoError.h>

#include <mutex>
#include <string>
#include <vector>

namespace viewer
{

/// While it lives, the engine tells of each draw that it prepares whether it merges its geometry, and those lines are
/// kept instead of shown. Other lines that the engine tells only for this reason are dropped; warnings and errors go
/// on to standard error, and lines of the engine's choice of platform to who listened before when `passOn` is set. To
/// be made before the engine starts.
class MergeLog
{
public:
    explicit MergeLog(bool passOn);
    ~MergeLog();
    MergeLog(const MergeLog&) = delete;
    MergeLog& operator=(const MergeLog&) = delete;

    /// One sentence a draw: how many batches it became, or why it was not merged. They are then forgotten.
    std::vector<std::string> takeLines();

private:
    void take(const SbString& message);

    const bool m_passOn;
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
    SoError::Handler m_former;
};

} // namespace viewer
