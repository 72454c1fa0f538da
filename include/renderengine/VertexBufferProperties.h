#pragma once

#include <cstdint>
#include <string>

#include <kavelor/SbDataType.h>

#include <renderengine/Handle.h>

namespace renderengine
{

/// Describes how a buffer is read as one vertex attribute (glVertexAttribPointer, glVertexAttribDivisor).
struct VertexBufferProperties
{
    bool operator==(const VertexBufferProperties& other) const
    {
        return slot == other.slot && dataType == other.dataType && normalized == other.normalized &&
               componentCount == other.componentCount && stride == other.stride && offset == other.offset &&
               divisor == other.divisor && buffer == other.buffer && name == other.name;
    }
    bool operator!=(const VertexBufferProperties& other) const { return !(*this == other); }

    /// Not read: the attribute is found by its name in the program.
    uint32_t slot = 0;
    /// Type of a component.
    SbDataType dataType{SbDataType::FLOAT};
    /// Not 0: integers are mapped to [0, 1] or [-1, 1].
    uint8_t normalized = 0;
    /// Components of an element, 1 to 4.
    uint8_t componentCount = 4;
    /// Bytes from one element to the next; 0 means tightly packed.
    uint32_t stride = 0;
    /// Bytes from the start of the buffer to the first element.
    uint32_t offset = 0;
    /// Instances that share an element; 0 advances per vertex.
    uint32_t divisor = 0;
    /// The buffer that holds the elements.
    BufferHandle buffer;
    /// Name of the attribute in the shader.
    std::string name;
};

} // namespace renderengine
