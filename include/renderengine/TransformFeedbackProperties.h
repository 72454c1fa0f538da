#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <renderengine/Handle.h>

namespace renderengine
{

/// Describes what a transform feedback captures and where to.
struct TransformFeedbackProperties
{
    bool operator==(const TransformFeedbackProperties& other) const
    {
        return varyings == other.varyings && buffers == other.buffers && primitiveMode == other.primitiveMode &&
               bufferMode == other.bufferMode && discard == other.discard;
    }
    bool operator!=(const TransformFeedbackProperties& other) const { return !(*this == other); }

    /// Names of the captured outputs of the last vertex-processing stage.
    std::vector<std::string> varyings;
    /// The buffers that receive them; with interleaved outputs only the first is bound.
    std::vector<BufferHandle> buffers;
    /// A GL enumerant: GL_POINTS, GL_LINES or GL_TRIANGLES.
    uint32_t primitiveMode = 0;
    /// 0 interleaves the outputs in one buffer, any other value gives each a buffer of its own.
    uint32_t bufferMode = 0;
    /// Not 0: nothing is rasterized while the feedback runs (GL_RASTERIZER_DISCARD).
    uint8_t discard = 0;
};

} // namespace renderengine
