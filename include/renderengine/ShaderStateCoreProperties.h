#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

#include <kavelor/SbVec.h>

#include <renderengine/Handle.h>

namespace renderengine
{

/// Switches of fixed-function lighting.
struct LightingFlags
{
    bool operator==(const LightingFlags& other) const
    {
        return lighting == other.lighting && twoSided == other.twoSided;
    }
    bool operator!=(const LightingFlags& other) const { return !(*this == other); }

    /// Whether lights are computed (GL_LIGHTING).
    bool lighting = false;
    /// Whether back faces use the back material (GL_LIGHT_MODEL_TWO_SIDE).
    bool twoSided = false;
};

/// Clip planes of a draw.
struct ClipPlaneProperties
{
    bool operator==(const ClipPlaneProperties& other) const
    {
        return std::equal(std::begin(planes), std::end(planes), std::begin(other.planes)) &&
               enableMask == other.enableMask;
    }
    bool operator!=(const ClipPlaneProperties& other) const { return !(*this == other); }

    /// The planes. Only the mask reaches the device; the shader computes the distances.
    SbVec4f planes[8];
    /// Bit i enables plane i (GL_CLIP_DISTANCE0 + i).
    uint8_t enableMask = 0;
};

/// Textures and samplers of a draw, by texture unit.
struct TextureUnitProperties
{
    /// Two blocks without any unit are equal whatever their handles hold.
    bool operator==(const TextureUnitProperties& other) const
    {
        if (mask == 0 && other.mask == 0)
        {
            return true;
        }
        return mask == other.mask && std::equal(std::begin(samplers), std::end(samplers), std::begin(other.samplers)) &&
               std::equal(std::begin(textures), std::end(textures), std::begin(other.textures));
    }
    bool operator!=(const TextureUnitProperties& other) const { return !(*this == other); }

    /// Bit i says that unit i is used.
    uint32_t mask = 0;
    /// The sampler of each unit.
    SamplerHandle samplers[32];
    /// The texture of each unit.
    TextureHandle textures[32];
};

/// The programmable state of a draw or of a compute dispatch. Shared by pointer to const between many of them.
struct ShaderStateCoreProperties
{
    bool operator==(const ShaderStateCoreProperties& other) const
    {
        return program == other.program && renderTarget == other.renderTarget && viewport == other.viewport &&
               patchVertices == other.patchVertices && shaderParameters == other.shaderParameters &&
               shaderBuffers == other.shaderBuffers && textureImages == other.textureImages &&
               lightingFlags == other.lightingFlags && reserved == other.reserved && clipPlanes == other.clipPlanes &&
               textures == other.textures;
    }
    bool operator!=(const ShaderStateCoreProperties& other) const { return !(*this == other); }

    /// The program that runs.
    ShaderProgramHandle program;
    /// Where pixels go; the invalid handle is the default framebuffer.
    RenderTargetHandle renderTarget;
    /// The viewport; the invalid handle is an empty one.
    ViewportHandle viewport;
    /// Vertices of a patch (GL_PATCH_VERTICES).
    uint32_t patchVertices = 1;
    /// Uniforms, set in order.
    std::vector<ShaderParameterHandle> shaderParameters;
    /// Blocks, bound in order.
    std::vector<ShaderBufferHandle> shaderBuffers;
    /// Image-unit bindings.
    std::vector<TextureImageHandle> textureImages;
    /// Switches of fixed-function lighting.
    LightingFlags lightingFlags;
    /// Not read.
    uint8_t reserved = 0;
    /// Clip planes.
    ClipPlaneProperties clipPlanes;
    /// Textures and samplers.
    TextureUnitProperties textures;
};

} // namespace renderengine
