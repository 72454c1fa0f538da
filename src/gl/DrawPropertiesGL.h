#pragma once

#include <renderengine/DrawProperties.h>
#include <renderengine/Handle.h>

#include <memory>
#include <vector>

namespace renderengine
{

/// What stands behind a draw-properties handle: the client's record, and the draws that list it, so that a change of
/// the record reaches their batches without a search.
struct DrawPropertiesGL
{
    /// Never null. An update puts another record here: batches may hold the former one.
    std::shared_ptr<const DrawProperties> properties;

    /// The draws that hold this object, one entry for each time they hold it.
    std::vector<DrawHandle> draws;
};

} // namespace renderengine
