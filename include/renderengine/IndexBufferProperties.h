#pragma once

#include <kavelor/SbDataType.h>

#include <renderengine/Handle.h>

namespace renderengine
{

/// Describes how a buffer is read as vertex indices.
struct IndexBufferProperties
{
    bool operator==(const IndexBufferProperties& other) const
    {
        return dataType == other.dataType && buffer == other.buffer;
    }
    bool operator!=(const IndexBufferProperties& other) const { return !(*this == other); }

    /// Type of an index.
    SbDataType dataType{SbDataType::UNSIGNED_INT};
    /// The buffer that holds the indices.
    BufferHandle buffer;
};

static_assert(sizeof(IndexBufferProperties) == 8, "two 32-bit fields");

} // namespace renderengine
