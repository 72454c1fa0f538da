#pragma once

#include <cstddef>

namespace renderengine::testing
{

/// What this process holds of the system's resources.
struct ProcessUsage
{
    /// Memory of its own, in bytes.
    std::size_t memory = 0;
    /// Open files, on Windows all kernel handles.
    std::size_t handles = 0;
    /// Windows, classes, device contexts and the like; 0 on Linux.
    std::size_t windowObjects = 0;
};

ProcessUsage readProcessUsage();

} // namespace renderengine::testing
