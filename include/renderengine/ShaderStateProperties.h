#pragma once

#include <renderengine/FixedFunctionProperties.h>
#include <renderengine/ShaderStateCoreProperties.h>

namespace renderengine
{

/// The programmable state together with the fixed-function state that render tasks may ask for.
struct ShaderStateProperties : ShaderStateCoreProperties
{
    bool operator==(const ShaderStateProperties& other) const
    {
        return ShaderStateCoreProperties::operator==(other) && transform == other.transform && light == other.light &&
               material == other.material && texGen == other.texGen && texEnv == other.texEnv;
    }
    bool operator!=(const ShaderStateProperties& other) const { return !(*this == other); }

    /// Matrices.
    TransformProperties transform;
    /// Lights; applied together with the material.
    LightProperties light;
    /// Material and light model.
    MaterialProperties material;
    /// Texture coordinate generation.
    TexGenProperties texGen;
    /// Texture environment.
    TexEnvProperties texEnv;
};

} // namespace renderengine
