#include <renderengine/ReversePresentFrameGL_GL.h>

#include "gl/RendererFixture.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{
namespace
{

/// Colour is texture 1, depth is texture 2.
class ReversePresentFrameGL_GLTest : public RendererGLTest
{
protected:
    void SetUp() override
    {
        RendererGLTest::SetUp();
        renderer->setPresentColorTexture(makeTexture());
        renderer->setPresentDepthTexture(makeTexture(2, 2, 84));
        renderer->setSize(8, 6);
        gl.clear();
    }

    Texts reversePresent()
    {
        step.reversePresentFrame(renderer->updatePresentEventArg());
        return gl.takeCalls();
    }

    /// The host has a framebuffer of this name bound.
    void bindHost(GLuint framebuffer)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        gl.clear();
    }

    GLuint makeHostFramebuffer()
    {
        GLuint framebuffer = 0;
        glGenFramebuffers(1, &framebuffer);
        return framebuffer;
    }

    ReversePresentFrameGL_GL step;
};

Texts savedBindings()
{
    return {"glIsTexture(1)", "glIsTexture(2)", "glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, <pointer>)",
            "glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, <pointer>)"};
}

Texts restoredBindings(const std::string& name)
{
    return {"glBindFramebuffer(GL_READ_FRAMEBUFFER, " + name + ")",
            "glBindFramebuffer(GL_DRAW_FRAMEBUFFER, " + name + ")"};
}

Texts newDrawFramebuffer(const std::string& name)
{
    return {"glGenFramebuffers(1, -> " + name + ")", "glBindFramebuffer(GL_DRAW_FRAMEBUFFER, " + name + ")",
            "glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 1, 0)",
            "glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D, 2, 0)"};
}

const char* const fullBlit = "glBlitFramebuffer(0, 0, 8, 6, 0, 0, 8, 6, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | "
                             "GL_STENCIL_BUFFER_BIT, GL_NEAREST)";

TEST_F(ReversePresentFrameGL_GLTest, MissingTextureSkipsTheStep)
{
    renderer->setPresentDepthTexture(TextureHandle());
    EXPECT_EQ(reversePresent(), (Texts{"glIsTexture(1)", "glIsTexture(0)"}));
}

TEST_F(ReversePresentFrameGL_GLTest, OneVendorBlitsAlsoFromTheWindow)
{
    gl.answerString(GL_VENDOR, "NVIDIA Corporation");
    EXPECT_EQ(reversePresent(), join({savedBindings(),
                                      {"glBindFramebuffer(GL_READ_FRAMEBUFFER, 0)", "glGetString(GL_VENDOR)"},
                                      newDrawFramebuffer("1"),
                                      {fullBlit},
                                      restoredBindings("0")}));
    // The vendor is asked once.
    reversePresent();
    reversePresent();
    EXPECT_EQ(gl.countOf("glGetString("), 0u);
}

TEST_F(ReversePresentFrameGL_GLTest, CombinedSourceIsBlitted)
{
    bindHost(makeHostFramebuffer());
    gl.answer(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, int64_t{9});
    EXPECT_EQ(reversePresent(),
              join({savedBindings(),
                    {"glBindFramebuffer(GL_READ_FRAMEBUFFER, 1)", "glGetString(GL_VENDOR)",
                     "glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, <pointer>)",
                     "glGetFramebufferAttachmentParameteriv(GL_READ_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, "
                     "GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, <pointer>)"},
                    newDrawFramebuffer("2"),
                    {fullBlit},
                    restoredBindings("1")}));
}

/// The shader copy, without the build of its program.
Texts shaderCopy(const std::string& colorSource, const std::string& depthSource)
{
    return {"glGetIntegerv(GL_DEPTH_WRITEMASK, <pointer>)",
            "glGetIntegerv(GL_DEPTH_FUNC, <pointer>)",
            "glGetIntegerv(GL_VERTEX_ARRAY_BINDING, <pointer>)",
            "glGetIntegerv(GL_CURRENT_PROGRAM, <pointer>)",
            "glGetIntegerv(GL_ACTIVE_TEXTURE, <pointer>)",
            "glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)",
            "glViewport(0, 0, 8, 6)",
            "glBindVertexArray(0)",
            "glIsProgram(1)",
            "glUseProgram(1)",
            "glActiveTexture(GL_TEXTURE1)",
            "glGetFramebufferAttachmentParameteriv(GL_READ_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, "
            "GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, <pointer>)",
            "glBindTexture(GL_TEXTURE_2D, " + depthSource + ")",
            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST)",
            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)",
            "glActiveTexture(GL_TEXTURE0)",
            "glGetFramebufferAttachmentParameteriv(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, "
            "GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, <pointer>)",
            "glBindTexture(GL_TEXTURE_2D, " + colorSource + ")",
            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST)",
            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)",
            "glDepthMask(GL_TRUE)",
            "glDepthFunc(GL_ALWAYS)",
            "glDrawArrays(GL_TRIANGLES, 0, 3)",
            "glBindVertexArray(0)",
            "glUseProgram(0)",
            "glBindTexture(GL_TEXTURE_2D, 0)",
            "glDepthFunc(GL_LESS)",
            "glDepthMask(GL_TRUE)",
            "glActiveTexture(GL_TEXTURE0)"};
}

TEST_F(ReversePresentFrameGL_GLTest, WindowGoesThroughAnIntermediateFramebuffer)
{
    const Texts first = reversePresent();
    const auto from = std::find(first.begin(), first.end(), "glGenFramebuffers(1, -> 1)");
    const auto to = std::find(first.begin(), first.end(), "glGenFramebuffers(1, -> 2)");
    EXPECT_EQ(Texts(from, to),
              (Texts{"glGenFramebuffers(1, -> 1)", "glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 1)", "glIsTexture(0)",
                     "glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)", "glGenTextures(1, -> 3)",
                     "glBindTexture(GL_TEXTURE_2D, 3)",
                     "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 6, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)",
                     "glBindTexture(GL_TEXTURE_2D, 0)",
                     "glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 3, 0)",
                     "glIsTexture(0)", "glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)", "glGenTextures(1, -> 4)",
                     "glBindTexture(GL_TEXTURE_2D, 4)",
                     "glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, 8, 6, 0, GL_DEPTH_COMPONENT, "
                     "GL_UNSIGNED_INT, null)",
                     "glBindTexture(GL_TEXTURE_2D, 0)",
                     "glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, 4, 0)",
                     "glBlitFramebuffer(0, 0, 8, 6, 0, 0, 8, 6, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT, "
                     "GL_NEAREST)",
                     "glBindFramebuffer(GL_READ_FRAMEBUFFER, 1)"}));
    EXPECT_EQ(std::count(first.begin(), first.end(), "glLinkProgram(1)"), 1);

    // A window of another size keeps the intermediate textures of the first.
    renderer->setSize(16, 12);
    const Texts second = reversePresent();
    EXPECT_EQ(std::count(second.begin(), second.end(), "glLinkProgram(1)"), 0);
    EXPECT_EQ(gl.made("Texture"), 4u);
}

TEST_F(ReversePresentFrameGL_GLTest, SourceWithoutCombinedAttachmentIsCopiedStraightFromIt)
{
    bindHost(makeHostFramebuffer());
    gl.answer(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, int64_t{0});
    reversePresent();
    Texts calls = reversePresent();
    const auto copy = std::find(calls.begin(), calls.end(), "glGetIntegerv(GL_DEPTH_WRITEMASK, <pointer>)");
    EXPECT_EQ(Texts(copy, calls.end()), join({shaderCopy("0", "0"), restoredBindings("1")}));
    EXPECT_EQ(gl.made("Texture"), 2u) << "no intermediate step";
}

TEST_F(ReversePresentFrameGL_GLTest, FramebufferOfOtherTexturesIsRebuilt)
{
    gl.answerString(GL_VENDOR, "NVIDIA Corporation");
    // What GL tells as attached is taken for the truth.
    gl.answer(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, int64_t{1});
    reversePresent();
    EXPECT_EQ(gl.deleted("Framebuffer"), 0u);
    reversePresent();
    EXPECT_EQ(gl.deleted("Framebuffer"), 1u);
    EXPECT_EQ(gl.live("Framebuffer"), 1u);
}

TEST_F(ReversePresentFrameGL_GLTest, GroupBracketsTheWork)
{
    SoPreferences::setBool("KVR_RENDERENGINE_GLDEBUG_GROUP", true);
    const Texts calls = reversePresent();
    EXPECT_NE(calls.at(2).find("\"renderengine::ReversePresentFrameGL_GL::reversePresentFrame"), std::string::npos);
    EXPECT_EQ(calls.back(), "glPopDebugGroup()");
}

TEST_F(ReversePresentFrameGL_GLTest, DestructorDeletesAllItMade)
{
    const size_t textures = gl.live("Texture");
    {
        ReversePresentFrameGL_GL other;
        other.reversePresentFrame(renderer->updatePresentEventArg());
        EXPECT_GT(gl.live("Texture"), textures);
    }
    EXPECT_EQ(gl.live("Texture"), textures);
    EXPECT_EQ(gl.live("Framebuffer"), 0u);
    EXPECT_EQ(gl.live("Program"), 0u);
}

} // namespace
} // namespace renderengine
