#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include <kavelor/SbMatrix.h>
#include <kavelor/SbVec.h>

namespace renderengine
{

/// Model matrix and texture matrices.
struct TransformPart1Properties
{
    bool operator==(const TransformPart1Properties& other) const
    {
        return model == other.model &&
               std::equal(std::begin(textureMatrices), std::end(textureMatrices), std::begin(other.textureMatrices));
    }
    bool operator!=(const TransformPart1Properties& other) const { return !(*this == other); }

    /// From object to world coordinates.
    SbMatrix model;
    /// One matrix per texture unit.
    SbMatrix textureMatrices[8];
};

/// View and projection matrix.
struct TransformPart2Properties
{
    bool operator==(const TransformPart2Properties& other) const
    {
        return view == other.view && reserved == other.reserved && projection == other.projection;
    }
    bool operator!=(const TransformPart2Properties& other) const { return !(*this == other); }

    /// From world to eye coordinates.
    SbMatrix view;
    /// Not read.
    SbMatrix reserved;
    /// From eye to clip coordinates.
    SbMatrix projection;
};

/// The matrices of the fixed-function pipeline; identity at first.
struct TransformProperties
{
    bool operator==(const TransformProperties& other) const { return part1 == other.part1 && part2 == other.part2; }
    bool operator!=(const TransformProperties& other) const { return !(*this == other); }

    TransformPart1Properties part1;
    TransformPart2Properties part2;
};

/// The eight lights of the fixed-function pipeline, as parallel arrays; GL's initial values at first.
struct LightProperties
{
    LightProperties()
    {
        std::fill(std::begin(position), std::end(position), SbVec4f(0.0f, 0.0f, 1.0f, 0.0f));
        std::fill(std::begin(spotDirection), std::end(spotDirection), SbVec4f(0.0f, 0.0f, -1.0f, 0.0f));
        std::fill(std::begin(spotCutoff), std::end(spotCutoff), 180.0f);
        std::fill(std::begin(constantAttenuation), std::end(constantAttenuation), 1.0f);
        const SbVec4f black(0.0f, 0.0f, 0.0f, 1.0f);
        std::fill(std::begin(ambient), std::end(ambient), black);
        std::fill(std::begin(diffuse), std::end(diffuse), black);
        std::fill(std::begin(specular), std::end(specular), black);
        diffuse[0] = SbVec4f(1.0f, 1.0f, 1.0f, 1.0f);
        specular[0] = SbVec4f(1.0f, 1.0f, 1.0f, 1.0f);
    }

    bool operator==(const LightProperties& other) const
    {
        const auto same = [](const auto& left, const auto& right)
        { return std::equal(std::begin(left), std::end(left), std::begin(right)); };
        return same(position, other.position) && same(spotDirection, other.spotDirection) &&
               same(spotExponent, other.spotExponent) && same(spotCutoff, other.spotCutoff) &&
               same(constantAttenuation, other.constantAttenuation) &&
               same(linearAttenuation, other.linearAttenuation) &&
               same(quadraticAttenuation, other.quadraticAttenuation) && same(ambient, other.ambient) &&
               same(diffuse, other.diffuse) && same(specular, other.specular) && enabledMask == other.enabledMask;
    }
    bool operator!=(const LightProperties& other) const { return !(*this == other); }

    /// Position in eye coordinates; w 0 is a direction.
    SbVec4f position[8];
    /// Direction of the cone in eye coordinates.
    SbVec4f spotDirection[8];
    /// Falloff inside the cone, 0 to 128.
    float spotExponent[8] = {};
    /// Half angle of the cone in degrees, 0 to 90, or 180 for no cone.
    float spotCutoff[8];
    /// Attenuation factors.
    float constantAttenuation[8];
    float linearAttenuation[8] = {};
    float quadraticAttenuation[8] = {};
    /// Colours.
    SbVec4f ambient[8];
    SbVec4f diffuse[8];
    SbVec4f specular[8];
    /// Bit i turns light i on.
    uint8_t enabledMask = 0;
};

/// A material value for the front faces and one for the back faces.
template <class T> struct MaterialFaces
{
    bool operator==(const MaterialFaces& other) const { return front == other.front && back == other.back; }
    bool operator!=(const MaterialFaces& other) const { return !(*this == other); }

    T front;
    T back;
};

/// Material and light model of the fixed-function pipeline; GL's initial values at first.
struct MaterialProperties
{
    bool operator==(const MaterialProperties& other) const
    {
        return lightModelAmbient == other.lightModelAmbient && localViewer == other.localViewer &&
               setColor == other.setColor && flatShading == other.flatShading && ambient == other.ambient &&
               diffuse == other.diffuse && specular == other.specular && emission == other.emission &&
               shininess == other.shininess;
    }
    bool operator!=(const MaterialProperties& other) const { return !(*this == other); }

    /// Ambient light of the whole scene.
    SbVec4f lightModelAmbient{0.2f, 0.2f, 0.2f, 1.0f};
    /// Not 0: specular reflection is computed from the eye's position (GL_LIGHT_MODEL_LOCAL_VIEWER).
    uint8_t localViewer = 0;
    /// Whether the reduced form of the material sets the current colour.
    bool setColor = true;
    /// Whether primitives have one colour (GL_FLAT).
    bool flatShading = false;
    /// Colours.
    MaterialFaces<SbVec4f> ambient{{0.2f, 0.2f, 0.2f, 1.0f}, {0.2f, 0.2f, 0.2f, 1.0f}};
    MaterialFaces<SbVec4f> diffuse{{0.8f, 0.8f, 0.8f, 1.0f}, {0.8f, 0.8f, 0.8f, 1.0f}};
    MaterialFaces<SbVec4f> specular{{0.0f, 0.0f, 0.0f, 1.0f}, {0.0f, 0.0f, 0.0f, 1.0f}};
    MaterialFaces<SbVec4f> emission{{0.0f, 0.0f, 0.0f, 1.0f}, {0.0f, 0.0f, 0.0f, 1.0f}};
    /// Shininess from 0 to 1; 1 stands for GL's 128.
    MaterialFaces<float> shininess{0.0f, 0.0f};
};

/// Texture coordinate generation of one unit.
struct TexGenUnitProperties
{
    TexGenUnitProperties()
    {
        // The plane of the third and of the fourth coordinate is zero in a new context.
        planes[2][2] = 0.0f;
        planes[3][3] = 0.0f;
    }

    bool operator==(const TexGenUnitProperties& other) const
    {
        return planes == other.planes && mode == other.mode && coordinateMask == other.coordinateMask;
    }
    bool operator!=(const TexGenUnitProperties& other) const { return !(*this == other); }

    /// Row c is the plane of coordinate c.
    SbMatrix planes;
    /// 0 object linear, 1 eye linear, 2 sphere map, 3 normal map, 4 reflection map.
    uint32_t mode = 1;
    /// Bit c turns the generation of coordinate c on.
    uint8_t coordinateMask = 0;
};

/// Texture coordinate generation of the fixed-function pipeline; GL's initial values at first.
struct TexGenProperties
{
    bool operator==(const TexGenProperties& other) const
    {
        return std::equal(std::begin(units), std::end(units), std::begin(other.units));
    }
    bool operator!=(const TexGenProperties& other) const { return !(*this == other); }

    /// One entry per texture unit.
    TexGenUnitProperties units[8];
};

/// Texture environment of the fixed-function pipeline.
struct TexEnvProperties
{
    bool operator==(const TexEnvProperties& other) const
    {
        return unitMask == other.unitMask && std::equal(std::begin(modes), std::end(modes), std::begin(other.modes));
    }
    bool operator!=(const TexEnvProperties& other) const { return !(*this == other); }

    /// Bit i says that unit i gets its mode.
    uint32_t unitMask = 0;
    /// GL enumerants: GL_ADD, GL_BLEND, GL_REPLACE, GL_MODULATE, GL_DECAL or GL_COMBINE; at first GL_MODULATE.
    uint32_t modes[4] = {0x2100u, 0x2100u, 0x2100u, 0x2100u};
};

} // namespace renderengine
