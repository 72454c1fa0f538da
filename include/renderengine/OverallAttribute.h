#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

#include <kavelor/SbDataType.h>

namespace renderengine
{

/// A vertex attribute with one value for all vertices (glVertexAttrib).
struct OverallAttribute
{
    bool operator==(const OverallAttribute& other) const
    {
        return slot == other.slot && dataType == other.dataType && normalized == other.normalized &&
               componentCount == other.componentCount && name == other.name &&
               std::equal(std::begin(value), std::end(value), std::begin(other.value));
    }
    bool operator!=(const OverallAttribute& other) const { return !(*this == other); }

    /// Not read: the attribute is found by its name in the program.
    uint32_t slot = 0;
    /// Type of a component.
    SbDataType dataType{SbDataType::FLOAT};
    /// Not 0: integers are mapped to [0, 1] or [-1, 1]; honoured with four components only.
    uint8_t normalized = 0;
    /// Components of the value, 1 to 4.
    uint8_t componentCount = 4;
    /// Name of the attribute in the shader.
    std::string name;
    /// The components in memory order, as large as four doubles.
    alignas(8) uint8_t value[32] = {};
};

} // namespace renderengine
