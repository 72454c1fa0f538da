#pragma once

#include <renderengine/TextureProperties.h>

#include <cstdint>

namespace renderengine
{

/// Values of TextureProperties::type.
enum Type : uint32_t
{
    Line,
    LineArray,
    Plane,
    PlaneMultisample,
    PlaneArray,
    PlaneMultisampleArray,
    Volume,
    Cube,
    CubeArray,
    Buffer
};

inline TextureProperties textureOf(uint32_t type, uint32_t width, uint32_t height = 1, uint32_t depth = 1)
{
    TextureProperties properties;
    properties.type = type;
    properties.width = width;
    properties.height = height;
    properties.depth = depth;
    return properties;
}

} // namespace renderengine
