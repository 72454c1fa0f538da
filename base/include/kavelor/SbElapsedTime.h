#pragma once

#include <chrono>

/// A stop watch on the system's steady clock, running since it was made or reset.
class SbElapsedTime
{
public:
    /// Seconds since the start.
    double getElapsed() const { return std::chrono::duration<double>(Clock::now() - m_start).count(); }

    /// Starts again at 0.
    void reset() { m_start = Clock::now(); }

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point m_start = Clock::now();
};
