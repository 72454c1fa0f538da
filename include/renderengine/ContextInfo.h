#pragma once

#include <kavelor/SbString.h>
#include <kavelor/SbVec.h>

#include <cstdint>

namespace renderengine
{

/// What a context found out about its device, filled once when the device context is made. Limits are in the units of
/// the GL limit that each stands for; without a device every number is 0 and every text is empty.
struct ContextInfo
{
    ContextInfo()
        : hasNvxMemoryInfo(0), hasMemoryInfo(0), hasDoublePrecision(0), hasAtomicInt64(0), hasAtomicCounters(0),
          hasImageLoadStore(0), hasShadingLanguage420Pack(0), hasCompressionS3tc(0), hasCompressionLatc(0),
          hasCompressionRgtc(0), isVersion46(0)
    {
    }

    int32_t version = 0; ///< Major version times 100 plus minor version times 10: 4.1 is 410.
    int32_t profile = 0; ///< GL_CONTEXT_PROFILE_MASK.
    SbString vendor;     ///< Vendor tag such as "GPU_NVIDIA"; empty for a vendor that has no tag.
    SbString renderer;   ///< GL_RENDERER.

    uint8_t hasNvxMemoryInfo : 1;          ///< GL_NVX_gpu_memory_info.
    uint8_t hasMemoryInfo : 1;             ///< GL_NVX_gpu_memory_info as well.
    uint8_t hasDoublePrecision : 1;        ///< 64-bit floating point in shaders.
    uint8_t hasAtomicInt64 : 1;            ///< GL_NV_shader_atomic_int64.
    uint8_t hasAtomicCounters : 1;         ///< Atomic counters in shaders.
    uint8_t hasImageLoadStore : 1;         ///< Images that shaders read and write.
    uint8_t hasShadingLanguage420Pack : 1; ///< Binding layout qualifiers and the rest of the 4.20 pack.
    uint8_t hasCompressionS3tc : 1;        ///< S3TC compressed textures.
    uint8_t hasCompressionLatc : 1;        ///< LATC compressed textures.
    uint8_t hasCompressionRgtc : 1;        ///< RGTC compressed textures.
    uint8_t isVersion46 : 1;               ///< Version 4.6 or later.

    SbVec2i32 maxViewportDims;                  ///< GL_MAX_VIEWPORT_DIMS, pixels.
    int32_t maxTextureSize = 0;                 ///< GL_MAX_TEXTURE_SIZE, texels.
    int32_t max3DTextureSize = 0;               ///< GL_MAX_3D_TEXTURE_SIZE, texels.
    int32_t maxVertexAttribs = 0;               ///< GL_MAX_VERTEX_ATTRIBS.
    int32_t maxConstantFour = 0;                ///< The engine's fixed figure 4.
    int32_t maxUniformBlockSize = 0;            ///< GL_MAX_UNIFORM_BLOCK_SIZE, bytes.
    SbVec3i32 maxComputeWorkGroupCount;         ///< GL_MAX_COMPUTE_WORK_GROUP_COUNT.
    SbVec3i32 maxComputeWorkGroupSize;          ///< GL_MAX_COMPUTE_WORK_GROUP_SIZE.
    int32_t maxComputeWorkGroupInvocations = 0; ///< GL_MAX_COMPUTE_WORK_GROUP_INVOCATIONS.
    int32_t maxConstant32 = 0;                  ///< The engine's fixed figure 32.
    int32_t maxTextureCoords = 0;               ///< Fixed-function texture coordinate sets; the engine uses 8.
    int32_t maxConstant16 = 0;                  ///< The engine's fixed figure 16.
    int32_t maxConstantEight0 = 0;              ///< The engine's fixed figure 8, first of three.
    int32_t maxConstantEight1 = 0;              ///< The engine's fixed figure 8, second of three.
    int32_t maxConstantEight2 = 0;              ///< The engine's fixed figure 8, third of three.
    int32_t shadingLanguageVersion = 0;         ///< GLSL version to write shaders for: 410 or 460.
};

} // namespace renderengine
