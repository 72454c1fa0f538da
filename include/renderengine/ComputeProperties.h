#pragma once

#include <kavelor/SbVec.h>

namespace renderengine
{

/// Describes a compute dispatch (glDispatchCompute).
struct ComputeProperties
{
    bool operator==(const ComputeProperties& other) const
    {
        return groups == other.groups && releaseState == other.releaseState;
    }
    bool operator!=(const ComputeProperties& other) const { return !(*this == other); }

    /// Work groups in x, y and z.
    SbVec3i32 groups{1, 1, 1};
    /// Whether the command lets go of its shader state once it has run; it then runs only once.
    bool releaseState = false;
};

} // namespace renderengine
