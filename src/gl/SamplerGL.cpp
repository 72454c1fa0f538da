#include "gl/SamplerGL.h"

#include "gl/GLTables.h"

#include <kavelor/SbColor.h>
#include <kavelor/SoPreferences.h>

namespace renderengine
{

namespace
{

constexpr uint32_t s_clamp = 1;
constexpr uint32_t s_clampToEdge = 4;
constexpr uint32_t s_nearest = 1;

const GLenum* findWrap(uint32_t index)
{
    static const bool s_coreProfile = SoPreferences::getBool("KVR_RENDERENGINE_USE_GLCORE", false);
    // Core contexts have no GL_CLAMP.
    return gltables::wrapModes.find(s_coreProfile && index == s_clamp ? s_clampToEdge : index);
}

GLenum filter(uint32_t index)
{
    return index == s_nearest ? GL_NEAREST : GL_LINEAR;
}

GLenum minFilter(uint32_t minIndex, uint32_t mipIndex)
{
    if (mipIndex == 0)
    {
        return filter(minIndex);
    }
    if (minIndex == s_nearest)
    {
        return mipIndex == s_nearest ? GL_NEAREST_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_LINEAR;
    }
    return mipIndex == s_nearest ? GL_LINEAR_MIPMAP_NEAREST : GL_LINEAR_MIPMAP_LINEAR;
}

} // namespace

void SamplerGL::create(const SamplerProperties& properties)
{
    glGenSamplers(1, &id);
    update(properties);
}

void SamplerGL::update(const SamplerProperties& properties)
{
    const GLenum* wrapS = findWrap(properties.wrapS);
    const GLenum* wrapT = findWrap(properties.wrapT);
    const GLenum* wrapR = findWrap(properties.wrapR);
    if (!wrapS || !wrapT || !wrapR)
    {
        return;
    }
    glSamplerParameteri(id, GL_TEXTURE_WRAP_S, static_cast<GLint>(*wrapS));
    glSamplerParameteri(id, GL_TEXTURE_WRAP_T, static_cast<GLint>(*wrapT));
    glSamplerParameteri(id, GL_TEXTURE_WRAP_R, static_cast<GLint>(*wrapR));
    glSamplerParameteri(id, GL_TEXTURE_MAG_FILTER, static_cast<GLint>(filter(properties.magFilter)));
    glSamplerParameteri(id, GL_TEXTURE_MIN_FILTER,
                        static_cast<GLint>(minFilter(properties.minFilter, properties.mipFilter)));
    if (properties.maxAnisotropy > 1.0f)
    {
        glSamplerParameterf(id, GL_TEXTURE_MAX_ANISOTROPY_EXT, properties.maxAnisotropy);
    }
    const SbColorRGBA border(properties.borderColor);
    glSamplerParameterfv(id, GL_TEXTURE_BORDER_COLOR, border.getValue());
}

void SamplerGL::destroy()
{
    if (glIsSampler(id))
    {
        glDeleteSamplers(1, &id);
    }
    id = 0;
}

void SamplerGL::bind(GLuint unit) const
{
    glBindSampler(unit, id);
}

} // namespace renderengine
