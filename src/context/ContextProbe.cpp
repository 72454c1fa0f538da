#include "context/ContextProbe.h"

#include <glbinding/gl.h>
#include <kavelor/SoPreferences.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <string>
#include <vector>

namespace renderengine
{

namespace
{

struct VendorTag
{
    const char* substring;
    const char* tag;
};

// Tested in this order, with the case as it stands.
constexpr VendorTag s_vendorTags[] = {
    {"NVIDIA", "GPU_NVIDIA"}, {"ATI", "GPU_ATI"}, {"Intel", "GPU_INTEL"}, {"Mesa/X.org", "GPU_MESA"}};

std::string readString(GLenum name)
{
    const GLubyte* text = glGetString(name);
    return text ? reinterpret_cast<const char*>(text) : "";
}

int32_t readInteger(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

SbVec3i32 readIndexed3(GLenum name)
{
    GLint values[3] = {0, 0, 0};
    for (GLuint i = 0; i < 3; ++i)
    {
        glGetIntegeri_v(name, i, &values[i]);
    }
    return SbVec3i32(values[0], values[1], values[2]);
}

void probeVersion(ContextInfo& info)
{
    GLint major = 0;
    GLint minor = 0;
    GLint profile = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    const bool isForcedTo41 = SoPreferences::getString("KVR_RENDERENGINE_RENDERER", "GL").upper() == "GL41";
    info.version = isForcedTo41 ? 410 : major * 100 + minor * 10;
    info.profile = profile;
    if (info.version < 410)
    {
        spdlog::error("Kavelor 10 requires at least OpenGL 4.1 support while this device only supports OpenGL version "
                      "{}.{}",
                      major, minor);
    }
}

void probeVendor(ContextInfo& info)
{
    const std::string vendor = readString(GL_VENDOR);
    for (const VendorTag& row : s_vendorTags)
    {
        if (vendor.find(row.substring) != std::string::npos)
        {
            info.vendor = row.tag;
            break;
        }
    }
    info.renderer = readString(GL_RENDERER);
}

std::vector<std::string> readExtensions()
{
    std::vector<std::string> extensions;
    const GLint count = readInteger(GL_NUM_EXTENSIONS);
    if (count > 0)
    {
        extensions.reserve(static_cast<size_t>(count));
        for (GLuint i = 0; i < static_cast<GLuint>(count); ++i)
        {
            const GLubyte* name = glGetStringi(GL_EXTENSIONS, i);
            extensions.emplace_back(name ? reinterpret_cast<const char*>(name) : "");
        }
    }
    return extensions;
}

void probeFlags(ContextInfo& info)
{
    const std::vector<std::string> extensions = readExtensions();
    const auto has = [&extensions](const char* name) -> uint8_t
    { return std::find(extensions.begin(), extensions.end(), name) != extensions.end() ? 1 : 0; };
    const auto hasSince = [&info, &has](int32_t version, const char* name) -> uint8_t
    { return info.version >= version ? static_cast<uint8_t>(1) : has(name); };
    info.hasNvxMemoryInfo = has("GL_NVX_gpu_memory_info") & 1;
    // Both flags stand for the same extension.
    info.hasMemoryInfo = has("GL_NVX_gpu_memory_info") & 1;
    info.hasDoublePrecision = hasSince(400, "GL_ARB_gpu_shader_fp64") & 1;
    info.hasAtomicInt64 = has("GL_NV_shader_atomic_int64") & 1;
    info.hasAtomicCounters = hasSince(420, "GL_ARB_shader_atomic_counters") & 1;
    info.hasImageLoadStore = hasSince(420, "GL_ARB_shader_image_load_store") & 1;
    info.hasShadingLanguage420Pack = hasSince(420, "GL_ARB_shading_language_420pack") & 1;
    info.hasCompressionS3tc = has("GL_EXT_texture_compression_s3tc") & 1;
    info.hasCompressionLatc = has("GL_EXT_texture_compression_latc") & 1;
    info.hasCompressionRgtc = has("GL_ARB_texture_compression_rgtc") & 1;
    info.isVersion46 = info.version >= 460 ? 1 : 0;
    if (info.vendor == "GPU_INTEL" || info.vendor == "GPU_MESA")
    {
        // These drivers list compressions that they do not do well enough.
        info.hasCompressionS3tc = 0;
        info.hasCompressionLatc = 0;
        info.hasCompressionRgtc = 0;
    }
}

void probeLimits(ContextInfo& info)
{
    GLint dimensions[2] = {0, 0};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, dimensions);
    info.maxViewportDims = SbVec2i32(dimensions[0], dimensions[1]);
    info.maxTextureSize = readInteger(GL_MAX_TEXTURE_SIZE);
    info.max3DTextureSize = readInteger(GL_MAX_3D_TEXTURE_SIZE);
    info.maxVertexAttribs = readInteger(GL_MAX_VERTEX_ATTRIBS);
    info.maxUniformBlockSize = readInteger(GL_MAX_UNIFORM_BLOCK_SIZE);
    info.maxComputeWorkGroupCount = readIndexed3(GL_MAX_COMPUTE_WORK_GROUP_COUNT);
    info.maxComputeWorkGroupSize = readIndexed3(GL_MAX_COMPUTE_WORK_GROUP_SIZE);
    info.maxComputeWorkGroupInvocations = readInteger(GL_MAX_COMPUTE_WORK_GROUP_INVOCATIONS);
    info.maxTextureCoords = readInteger(GL_MAX_TEXTURE_COORDS);

    // The engine's fixed figures, the same on every back end.
    info.maxConstant32 = 32;
    info.maxConstantFour = 4;
    info.maxTextureCoords = 8;
    info.maxConstant16 = 16;
    info.maxConstantEight0 = 8;
    info.maxConstantEight1 = 8;
    info.maxConstantEight2 = 8;
    info.shadingLanguageVersion = info.isVersion46 ? 460 : 410;
}

} // namespace

ContextInfo probeCurrentContext()
{
    ContextInfo info;
    probeVersion(info);
    probeVendor(info);
    probeFlags(info);
    probeLimits(info);
    return info;
}

} // namespace renderengine
