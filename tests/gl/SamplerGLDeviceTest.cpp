#include "GLDeviceTestSupport.h"

#include "gl/SamplerGL.h"

#include <array>

namespace renderengine
{

namespace
{

GLint parameter(const SamplerGL& sampler, GLenum name)
{
    GLint value = 0;
    glGetSamplerParameteriv(sampler.getId(), name, &value);
    return value;
}

void expectWraps(const std::array<GLenum, 6>& modes)
{
    SamplerGL sampler;
    sampler.create(SamplerProperties{});
    for (unsigned i = 0; i < modes.size(); ++i)
    {
        SCOPED_TRACE(i);
        SamplerProperties properties;
        properties.wrapS = i & 7u;
        properties.wrapT = i & 7u;
        properties.wrapR = i & 7u;
        sampler.update(properties);
        for (const auto name : {GLenum{GL_TEXTURE_WRAP_S}, GLenum{GL_TEXTURE_WRAP_T}, GLenum{GL_TEXTURE_WRAP_R}})
        {
            EXPECT_EQ(parameter(sampler, name), static_cast<GLint>(modes[i]));
        }
    }
    sampler.destroy();
}

} // namespace

using SamplerGLDeviceTest = ResourceDeviceTest;
using SamplerGLCoreDeviceTest = ResourceCoreDeviceTest;

TEST_F(SamplerGLDeviceTest, EveryWrapModeIsTaken)
{
    expectWraps(
        {GL_MIRROR_CLAMP_TO_EDGE, GL_CLAMP, GL_REPEAT, GL_CLAMP_TO_BORDER, GL_CLAMP_TO_EDGE, GL_MIRRORED_REPEAT});
}

TEST_F(SamplerGLCoreDeviceTest, EveryWrapModeIsTaken)
{
    expectWraps({GL_MIRROR_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE, GL_REPEAT, GL_CLAMP_TO_BORDER, GL_CLAMP_TO_EDGE,
                 GL_MIRRORED_REPEAT});
}

TEST_F(SamplerGLDeviceTest, FiltersBorderAndAnisotropyArrive)
{
    SamplerProperties properties;
    properties.minFilter = 1;
    properties.magFilter = 1;
    properties.mipFilter = 2;
    properties.maxAnisotropy = 2;
    properties.borderColor = 0x00FF0080u;
    SamplerGL sampler;
    sampler.create(properties);
    EXPECT_EQ(parameter(sampler, GL_TEXTURE_MIN_FILTER), GL_NEAREST_MIPMAP_LINEAR);
    EXPECT_EQ(parameter(sampler, GL_TEXTURE_MAG_FILTER), GL_NEAREST);
    EXPECT_EQ(parameter(sampler, GL_TEXTURE_MAX_ANISOTROPY_EXT), 2);
    std::array<GLfloat, 4> border{};
    glGetSamplerParameterfv(sampler.getId(), GL_TEXTURE_BORDER_COLOR, border.data());
    EXPECT_FLOAT_EQ(border[1], 1);
    EXPECT_FLOAT_EQ(border[3], 128.0f / 255.0f);
    sampler.bind(3);
    glActiveTexture(GL_TEXTURE3);
    EXPECT_EQ(integer(GL_SAMPLER_BINDING), static_cast<GLint>(sampler.getId()));
    glActiveTexture(GL_TEXTURE0);
    const GLuint name = sampler.getId();
    sampler.destroy();
    EXPECT_FALSE(glIsSampler(name));
}

} // namespace renderengine
