#include "gl/SamplerGL.h"

#include "GLRecordingFixture.h"

#include <kavelor/SoPreferences.h>

#include <array>

namespace renderengine
{

/// The profile is kept for the life of the process, so each case needs a process of its own.
using SamplerGLTest = GLRecordingTest;

TEST_F(SamplerGLTest, CreateGeneratesANameAndSendsTheParametersInOrder)
{
    SamplerGL sampler;
    sampler.create(SamplerProperties{});
    EXPECT_EQ(gl.takeCalls(), (Texts{"glGenSamplers(1, -> 1)", "glSamplerParameteri(1, GL_TEXTURE_WRAP_S, GL_REPEAT)",
                                     "glSamplerParameteri(1, GL_TEXTURE_WRAP_T, GL_REPEAT)",
                                     "glSamplerParameteri(1, GL_TEXTURE_WRAP_R, GL_REPEAT)",
                                     "glSamplerParameteri(1, GL_TEXTURE_MAG_FILTER, GL_LINEAR)",
                                     "glSamplerParameteri(1, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR)",
                                     "glSamplerParameterfv(1, GL_TEXTURE_BORDER_COLOR, {0, 0, 0, 0})"}));
}

TEST_F(SamplerGLTest, AnisotropyIsSentOnlyAboveOne)
{
    SamplerGL sampler;
    SamplerProperties properties;
    sampler.create(properties);
    EXPECT_EQ(gl.countOf("glSamplerParameterf("), 0u);
    properties.maxAnisotropy = 4;
    properties.borderColor = 0xFF000033u;
    sampler.update(properties);
    const Texts calls = gl.takeCalls();
    EXPECT_EQ(Texts(calls.end() - 2, calls.end()),
              (Texts{"glSamplerParameterf(1, GL_TEXTURE_MAX_ANISOTROPY, 4)",
                     "glSamplerParameterfv(1, GL_TEXTURE_BORDER_COLOR, {1, 0, 0, 0.2})"}));
}

TEST_F(SamplerGLTest, EachCoordinateTakesItsWrapMode)
{
    SamplerGL sampler;
    SamplerProperties properties;
    properties.wrapS = 3;
    properties.wrapT = 4;
    properties.wrapR = 5;
    sampler.update(properties);
    const Texts calls = gl.takeCalls();
    EXPECT_EQ(Texts(calls.begin(), calls.begin() + 3),
              (Texts{"glSamplerParameteri(0, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER)",
                     "glSamplerParameteri(0, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE)",
                     "glSamplerParameteri(0, GL_TEXTURE_WRAP_R, GL_MIRRORED_REPEAT)"}));
}

TEST_F(SamplerGLTest, EachWrapIndexHasItsMode)
{
    const std::array<const char*, 6> modes{"GL_MIRROR_CLAMP_TO_EDGE", "GL_CLAMP",         "GL_REPEAT",
                                           "GL_CLAMP_TO_BORDER",      "GL_CLAMP_TO_EDGE", "GL_MIRRORED_REPEAT"};
    SamplerGL sampler;
    for (unsigned i = 0; i < modes.size(); ++i)
    {
        SCOPED_TRACE(i);
        SamplerProperties properties;
        properties.wrapT = i & 7u;
        sampler.update(properties);
        EXPECT_EQ(gl.takeCalls()[1], "glSamplerParameteri(0, GL_TEXTURE_WRAP_T, " + std::string(modes[i]) + ")");
    }
}

TEST_F(SamplerGLTest, CoreProfileReadsClampAsClampToEdge)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    SamplerGL sampler;
    SamplerProperties properties;
    properties.wrapS = 1;
    sampler.update(properties);
    const Texts calls = gl.takeCalls();
    EXPECT_EQ(calls[0], "glSamplerParameteri(0, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)");
    EXPECT_EQ(calls[1], "glSamplerParameteri(0, GL_TEXTURE_WRAP_T, GL_REPEAT)");
}

TEST_F(SamplerGLTest, AWrapIndexOutsideTheTableIsReportedAndLeavesTheSampler)
{
    SamplerGL sampler;
    SamplerProperties properties;
    properties.wrapS = 6;
    EXPECT_DEBUG_DEATH(
        {
            sampler.update(properties);
            EXPECT_EQ(gl.takeCalls(), Texts{});
            EXPECT_EQ(log.take(),
                      Texts{"error: [RendererGL] The wrap mode index 6 is outside its table of 6 entries."});
        },
        "index outside its table");
}

TEST_F(SamplerGLTest, FiltersOfEachCombination)
{
    SamplerGL sampler;
    for (unsigned min = 0; min < 4; ++min)
    {
        for (unsigned mip = 0; mip < 4; ++mip)
        {
            SCOPED_TRACE(std::to_string(min) + " " + std::to_string(mip));
            SamplerProperties properties;
            properties.minFilter = min & 3u;
            properties.magFilter = min & 3u;
            properties.mipFilter = mip & 3u;
            sampler.update(properties);
            const Texts calls = gl.takeCalls();
            const std::string plain = min == 1 ? "GL_NEAREST" : "GL_LINEAR";
            const std::string mipmap = mip == 0 ? "" : mip == 1 ? "_MIPMAP_NEAREST" : "_MIPMAP_LINEAR";
            EXPECT_EQ(calls[3], "glSamplerParameteri(0, GL_TEXTURE_MAG_FILTER, " + plain + ")");
            EXPECT_EQ(calls[4], "glSamplerParameteri(0, GL_TEXTURE_MIN_FILTER, " + plain + mipmap + ")");
        }
    }
}

TEST_F(SamplerGLTest, BindAndDestroy)
{
    SamplerGL sampler;
    sampler.create(SamplerProperties{});
    gl.clear();
    sampler.bind(5);
    sampler.destroy();
    sampler.destroy();
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glBindSampler(5, 1)", "glIsSampler(1)", "glDeleteSamplers(1, {1})", "glIsSampler(0)"}));
    EXPECT_EQ(sampler.getId(), 0u);
}

} // namespace renderengine
