#include "gl/RenderTargetGL.h"

#include "GLRecordingFixture.h"

#include "gl/TextureGL.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

namespace
{

constexpr uint8_t s_depth = 17;
constexpr uint8_t s_stencil = 18;
constexpr uint8_t s_depthStencil = 19;

/// Turns the check of framebuffers on for a scope.
struct CheckSetting
{
    CheckSetting() { SoPreferences::setBool("KVR_RENDERENGINE_CHECK_FRAMEBUFFER", true); }
    ~CheckSetting() { SoPreferences::unset("KVR_RENDERENGINE_CHECK_FRAMEBUFFER"); }
    CheckSetting(const CheckSetting&) = delete;
    CheckSetting& operator=(const CheckSetting&) = delete;
};

class RenderTargetGLTest : public GLRecordingTest
{
protected:
    /// A texture of a type, with the formats' defaults. Names count up from 1.
    std::shared_ptr<TextureGL> texture(uint32_t type = 2, uint32_t internalFormat = 21)
    {
        TextureProperties description;
        description.type = type;
        description.internalFormat = internalFormat;
        auto result = std::make_shared<TextureGL>(description);
        gl.clear();
        return result;
    }

    void add(uint8_t attachment, std::shared_ptr<TextureGL> attached, uint16_t layer = 0, uint8_t level = 0)
    {
        RenderTextureProperty entry;
        entry.texture = TextureHandle(static_cast<uint32_t>(textures.size()));
        entry.attachment = attachment;
        entry.layer = layer;
        entry.level = level;
        properties.attachments.push_back(entry);
        textures.push_back(std::move(attached));
    }

    void update() { target.update(properties, textures); }

    RenderTargetProperties properties;
    RenderTargetGL::TextureList textures;
    RenderTargetGL target;
};

} // namespace

TEST_F(RenderTargetGLTest, UpdateBuildsTheFramebufferAndRestoresTheBinding)
{
    glBindFramebuffer(GL_FRAMEBUFFER, 40);
    add(0, texture(), 0, 2);
    add(1, texture());
    add(s_depthStencil, texture());
    properties.srgb = 1;
    gl.clear();
    update();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, <pointer>)",
                                     "glGenFramebuffers(1, -> 1)", "glBindFramebuffer(GL_FRAMEBUFFER, 1)",
                                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 1, 2)",
                                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, 2, 0)",
                                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, 3, 0)",
                                     "glDrawBuffers(2, {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1})",
                                     "glEnable(GL_FRAMEBUFFER_SRGB)", "glBindFramebuffer(GL_FRAMEBUFFER, 40)"}));
    EXPECT_EQ(target.getFramebuffer(), 1u);
    EXPECT_EQ(target.getColorAttachmentMask(), 3u);
    EXPECT_FALSE(target.hasDepthAttachment());
    EXPECT_FALSE(target.hasStencilAttachment());
    EXPECT_TRUE(target.hasDepthStencilAttachment());
}

TEST_F(RenderTargetGLTest, TheFirstBuildLeavesTheDefaultFramebufferBound)
{
    add(0, texture());
    update();
    EXPECT_EQ(gl.calls().back(), "glBindFramebuffer(GL_FRAMEBUFFER, 0)");
}

TEST_F(RenderTargetGLTest, UpdateWithAnIdenticalListRebuildsNothing)
{
    add(0, texture());
    update();
    gl.clear();
    update();
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(RenderTargetGLTest, UpdateWithAnIdenticalListLeavesADirtyTargetDirtyUntilItsBind)
{
    add(0, texture());
    update();
    textures[0]->setDirty(true);
    gl.clear();
    update();
    EXPECT_EQ(gl.takeCalls(), Texts{});
    EXPECT_TRUE(target.isDirty());
    target.bind();
    EXPECT_FALSE(target.isDirty());
}

TEST_F(RenderTargetGLTest, UpdateWithTheSameListButAnotherTextureRebuilds)
{
    add(0, texture());
    update();
    textures[0] = texture();
    update();
    EXPECT_EQ(gl.callsMatching("glFramebufferTexture"),
              (Texts{"glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 0, 0)",
                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 2, 0)"}));
}

TEST_F(RenderTargetGLTest, UpdateOfAnotherListKeepsTheFramebufferAndDetachesFirst)
{
    add(0, texture());
    add(s_depth, texture());
    update();
    properties.attachments.pop_back();
    textures.pop_back();
    gl.clear();
    update();
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, <pointer>)", "glBindFramebuffer(GL_FRAMEBUFFER, 1)",
                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 0, 0)",
                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, 0, 0)",
                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 1, 0)",
                     "glDrawBuffers(1, {GL_COLOR_ATTACHMENT0})", "glBindFramebuffer(GL_FRAMEBUFFER, 0)"}));
    EXPECT_FALSE(target.hasDepthAttachment());
}

TEST_F(RenderTargetGLTest, BindBuildsATargetThatWasNeverUpdated)
{
    target.bind();
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, <pointer>)", "glGenFramebuffers(1, -> 1)",
                     "glBindFramebuffer(GL_FRAMEBUFFER, 1)", "glDrawBuffer(GL_NONE)", "glReadBuffer(GL_NONE)",
                     "glBindFramebuffer(GL_FRAMEBUFFER, 0)", "glBindFramebuffer(GL_FRAMEBUFFER, 1)"}));
}

TEST_F(RenderTargetGLTest, BindOfACleanTargetBindsOnly)
{
    add(0, texture());
    update();
    gl.clear();
    target.bind();
    EXPECT_EQ(gl.takeCalls(), Texts{"glBindFramebuffer(GL_FRAMEBUFFER, 1)"});
}

TEST_F(RenderTargetGLTest, ATextureWithANewNameIsAttachedAtTheNextBind)
{
    add(0, texture());
    update();
    TextureProperties volume;
    volume.type = 6;
    textures[0]->update(volume);
    EXPECT_TRUE(target.isDirty());
    gl.clear();
    target.bind();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, <pointer>)", "glIsFramebuffer(1)",
                                     "glDeleteFramebuffers(1, {1})", "glGenFramebuffers(1, -> 2)",
                                     "glBindFramebuffer(GL_FRAMEBUFFER, 2)",
                                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 0, 0)",
                                     "glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 2, 0, 0)",
                                     "glDrawBuffers(1, {GL_COLOR_ATTACHMENT0})", "glBindFramebuffer(GL_FRAMEBUFFER, 0)",
                                     "glBindFramebuffer(GL_FRAMEBUFFER, 2)"}));
}

TEST_F(RenderTargetGLTest, ARebuildOfTheBoundTargetLeavesItsNewFramebufferBound)
{
    add(0, texture());
    update();
    target.bind();
    target.setDirty(true);
    gl.clear();
    target.rebuild();
    EXPECT_EQ(gl.callsMatching("glGenFramebuffers"), Texts{"glGenFramebuffers(1, -> 2)"});
    EXPECT_EQ(gl.calls().back(), "glBindFramebuffer(GL_FRAMEBUFFER, 2)");
}

TEST_F(RenderTargetGLTest, ATextureThatLeavesTheListNoLongerReachesTheTarget)
{
    const auto first = texture();
    add(0, first);
    update();
    textures[0] = texture();
    update();
    first->setDirty(true);
    EXPECT_FALSE(target.isDirty());
}

TEST_F(RenderTargetGLTest, ADepthTargetHasNoDrawAndReadBuffer)
{
    add(s_depth, texture());
    update();
    EXPECT_EQ(gl.callsMatching("glDraw"), Texts{"glDrawBuffer(GL_NONE)"});
    EXPECT_EQ(gl.callsMatching("glRead"), Texts{"glReadBuffer(GL_NONE)"});
    EXPECT_TRUE(target.hasDepthAttachment());
    EXPECT_EQ(target.getColorAttachmentMask(), 0u);
}

TEST_F(RenderTargetGLTest, ColourNineAloneIsOneDrawBufferWithoutGaps)
{
    add(9, texture());
    update();
    EXPECT_EQ(gl.callsMatching("glDrawBuffers"), Texts{"glDrawBuffers(1, {GL_COLOR_ATTACHMENT9})"});
    EXPECT_EQ(target.getColorAttachmentMask(), 1u << 9);
}

TEST_F(RenderTargetGLTest, EightColourAttachmentsPass)
{
    for (uint8_t i = 0; i < 8; ++i)
    {
        add(i, texture());
    }
    update();
    EXPECT_EQ(gl.callsMatching("glDrawBuffers"),
              Texts{"glDrawBuffers(8, {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1, GL_COLOR_ATTACHMENT2, "
                    "GL_COLOR_ATTACHMENT3, GL_COLOR_ATTACHMENT4, GL_COLOR_ATTACHMENT5, GL_COLOR_ATTACHMENT6, "
                    "GL_COLOR_ATTACHMENT7})"});
}

TEST_F(RenderTargetGLTest, NineColourAttachmentsAreReportedAndStayAttached)
{
    for (uint8_t i = 0; i < 9; ++i)
    {
        add(i, texture());
    }
    gl.answer(GL_MAX_DRAW_BUFFERS, 16);
    update();
    EXPECT_EQ(log.take(), Texts{"error: [RenderTargetGL] Number of color attachments is greater than the maximum "
                                "number of draw buffers."});
    EXPECT_EQ(gl.countOf("glDrawBuffer"), 0u);
    EXPECT_EQ(gl.countOf("glFramebufferTexture("), 9u);
    EXPECT_EQ(target.getColorAttachmentMask(), 0x1FFu);
}

TEST_F(RenderTargetGLTest, EachAttachmentIndexHasItsPoint)
{
    for (uint8_t i = 0; i < 20; ++i)
    {
        SCOPED_TRACE(int{i});
        RenderTargetGL single;
        RenderTargetProperties list;
        list.attachments.resize(1);
        list.attachments[0].attachment = i;
        const auto attached = texture();
        single.update(list, {attached});
        std::string point = "GL_COLOR_ATTACHMENT" + std::to_string(i);
        point = i == s_depth ? "GL_DEPTH_ATTACHMENT" : point;
        point = i == s_stencil ? "GL_STENCIL_ATTACHMENT" : point;
        point = i == s_depthStencil ? "GL_DEPTH_STENCIL_ATTACHMENT" : point;
        // No point of attachment; the enumerant stands in its place and GL refuses it.
        point = i == 16 ? "GL_MAX_COLOR_ATTACHMENTS" : point;
        EXPECT_EQ(gl.callsMatching("glFramebufferTexture"),
                  Texts{"glFramebufferTexture(GL_FRAMEBUFFER, " + point + ", " + std::to_string(i + 1) + ", 0)"});
        EXPECT_EQ(single.getColorAttachmentMask(), i < 16 ? 1u << i : 0u);
        EXPECT_EQ(single.hasDepthAttachment(), i == s_depth);
        EXPECT_EQ(single.hasStencilAttachment(), i == s_stencil);
        EXPECT_EQ(single.hasDepthStencilAttachment(), i == s_depthStencil);
    }
}

TEST_F(RenderTargetGLTest, EntriesAboveTheLastIndexAndWithoutATextureAreSkipped)
{
    add(20, texture());
    add(255, texture());
    add(0, nullptr);
    add(1, texture());
    update();
    EXPECT_EQ(gl.callsMatching("glFramebufferTexture"),
              Texts{"glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, 3, 0)"});
    EXPECT_EQ(target.getColorAttachmentMask(), 2u);
}

TEST_F(RenderTargetGLTest, MoreEntriesThanAttachmentPointsAreCut)
{
    const auto shared = texture();
    for (int i = 0; i < 30; ++i)
    {
        add(s_depth, shared);
    }
    update();
    EXPECT_EQ(gl.countOf("glFramebufferTexture("), 20u);
}

TEST_F(RenderTargetGLTest, CubeFacesUpToFiveAreAttached)
{
    add(0, texture(7), 5, 1);
    add(1, texture(7), 6);
    update();
    EXPECT_EQ(
        gl.callsMatching("glFramebufferTexture"),
        Texts{"glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 1, 1)"});
}

TEST_F(RenderTargetGLTest, LayeredTargetsAreAttachedByLayer)
{
    for (const uint32_t type : {1u, 4u, 6u, 8u, 5u})
    {
        SCOPED_TRACE(type);
        RenderTargetGL layered;
        RenderTargetProperties list;
        list.attachments.resize(1);
        list.attachments[0].layer = 0xFFFF;
        list.attachments[0].level = 3;
        const auto attached = texture(type);
        layered.update(list, {attached});
        EXPECT_EQ(gl.callsMatching("glFramebufferTexture"),
                  Texts{"glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, " +
                        std::to_string(attached->getId()) + ", 3, 65535)"});
    }
}

TEST_F(RenderTargetGLTest, OtherTargetsAreAttachedWhole)
{
    for (const uint32_t type : {0u, 2u, 3u})
    {
        SCOPED_TRACE(type);
        RenderTargetGL whole;
        RenderTargetProperties list;
        list.attachments.resize(1);
        list.attachments[0].layer = 2;
        const auto attached = texture(type);
        whole.update(list, {attached});
        EXPECT_EQ(gl.callsMatching("glFramebufferTexture"),
                  Texts{"glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, " +
                        std::to_string(attached->getId()) + ", 0)"});
    }
}

TEST_F(RenderTargetGLTest, DestroyDeletesTheFramebuffer)
{
    add(0, texture());
    update();
    gl.clear();
    target.destroy();
    target.destroy();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsFramebuffer(1)", "glDeleteFramebuffers(1, {1})"}));
    EXPECT_EQ(target.getFramebuffer(), 0u);
}

TEST_F(RenderTargetGLTest, SharesItsTextures)
{
    std::weak_ptr<TextureGL> watched;
    {
        const auto attached = texture();
        watched = attached;
        target.update(properties, {});
        add(0, attached);
        update();
        textures.clear();
    }
    EXPECT_FALSE(watched.expired());
    target.update(RenderTargetProperties{}, {});
    EXPECT_TRUE(watched.expired());
}

TEST_F(RenderTargetGLTest, CheckSaysNothingOfACompleteFramebuffer)
{
    RenderTargetGL::checkFramebuffer({}, nullptr, nullptr, nullptr);
    EXPECT_EQ(gl.takeCalls(), Texts{"glCheckFramebufferStatus(GL_FRAMEBUFFER)"});
}

TEST_F(RenderTargetGLTest, CheckOfAnEmptyFramebuffer)
{
    gl.fail("glCheckFramebufferStatus");
    gl.answer(GL_DRAW_BUFFER, int64_t{1});
    gl.answer(GL_READ_BUFFER, int64_t{1});
    gl.answer(GL_DEPTH_WRITEMASK, int64_t{1});
    RenderTargetGL::checkFramebuffer({}, nullptr, nullptr, nullptr);
    EXPECT_EQ(log.take(), (Texts{"error: [RenderTargetGL] Framebuffer is not complete (GL_FRAMEBUFFER_UNSUPPORTED).",
                                 "warning: No images are attached to this FBO.",
                                 "warning: GL_DRAW_BUFFER is NOT set to GL_NONE whereas there are NO color attachment.",
                                 "warning: GL_READ_BUFFER is NOT set to GL_NONE whereas there are NO color attachment.",
                                 "warning: GL_DEPTH_WRITEMASK is set to TRUE whereas there are NO depth attachment."}));
}

TEST_F(RenderTargetGLTest, CheckOfWrongFormats)
{
    const auto integer = texture(2, 59);
    const auto color = texture(2, 21);
    gl.fail("glCheckFramebufferStatus");
    gl.answer(GL_DRAW_BUFFER, int64_t{0});
    gl.answer(GL_READ_BUFFER, int64_t{0});
    gl.answer(GL_DEPTH_WRITEMASK, int64_t{0});
    RenderTargetGL::ColorTextures colors{};
    colors[0] = color.get();
    colors[15] = integer.get();
    RenderTargetGL::checkFramebuffer(colors, color.get(), color.get(), color.get());
    EXPECT_EQ(log.take(),
              (Texts{"error: [RenderTargetGL] Framebuffer is not complete (GL_FRAMEBUFFER_UNSUPPORTED).",
                     "warning: Texture attached to COLOR_ATTACHEMENT15 has not a color format.",
                     "warning: Texture attached to DEPTH_ATTACHMENT has not a depth format.",
                     "warning: Texture attached to STENCIL_ATTACHMENT has not a stencil format.",
                     "warning: Texture attached to DEPTH_STENCIL_ATTACHMENT has not a depth_stencil format.",
                     "warning: GL_DRAW_BUFFER is set to GL_NONE whereas there are color attachment.",
                     "warning: GL_READ_BUFFER is set to GL_NONE whereas there are color attachment.",
                     "warning: GL_DEPTH_WRITEMASK is set to FALSE whereas there are depth attachment."}));
}

TEST_F(RenderTargetGLTest, CheckAcceptsTheUsualFormats)
{
    gl.fail("glCheckFramebufferStatus");
    gl.answer(GL_DRAW_BUFFER, int64_t{1});
    gl.answer(GL_READ_BUFFER, int64_t{1});
    gl.answer(GL_DEPTH_WRITEMASK, int64_t{1});
    for (const uint32_t format : {12u, 21u, 30u, 31u, 32u, 33u, 34u, 35u, 36u, 37u})
    {
        SCOPED_TRACE(format);
        const auto color = texture(2, format);
        const auto depth = texture(2, 81);
        const auto depthStencil = texture(2, 84);
        RenderTargetGL::ColorTextures colors{};
        colors[3] = color.get();
        RenderTargetGL::checkFramebuffer(colors, depth.get(), depthStencil.get(), depthStencil.get());
        EXPECT_EQ(log.take(),
                  Texts{"error: [RenderTargetGL] Framebuffer is not complete (GL_FRAMEBUFFER_UNSUPPORTED)."});
    }
}

TEST_F(RenderTargetGLTest, TheSettingChecksEachRebuildWhileTheFramebufferIsBound)
{
    const CheckSetting setting;
    add(15, texture(2, 59));
    add(0, texture());
    add(s_depth, texture());
    add(s_stencil, texture());
    add(s_depthStencil, texture());
    gl.answer(GL_DRAW_BUFFER, int64_t{0});
    gl.answer(GL_READ_BUFFER, int64_t{1});
    gl.answer(GL_DEPTH_WRITEMASK, int64_t{1});
    gl.fail("glCheckFramebufferStatus");
    update();
    const Texts findings{"error: [RenderTargetGL] Framebuffer is not complete (GL_FRAMEBUFFER_UNSUPPORTED).",
                         "warning: Texture attached to COLOR_ATTACHEMENT15 has not a color format.",
                         "warning: Texture attached to DEPTH_ATTACHMENT has not a depth format.",
                         "warning: Texture attached to STENCIL_ATTACHMENT has not a stencil format.",
                         "warning: Texture attached to DEPTH_STENCIL_ATTACHMENT has not a depth_stencil format.",
                         "warning: GL_DRAW_BUFFER is set to GL_NONE whereas there are color attachment."};
    EXPECT_EQ(log.take(), findings);
    const Texts calls = gl.takeCalls();
    ASSERT_GE(calls.size(), 5u);
    EXPECT_EQ(Texts(calls.end() - 5, calls.end()),
              (Texts{"glCheckFramebufferStatus(GL_FRAMEBUFFER)", "glGetBooleanv(GL_DRAW_BUFFER, <pointer>)",
                     "glGetBooleanv(GL_READ_BUFFER, <pointer>)", "glGetBooleanv(GL_DEPTH_WRITEMASK, <pointer>)",
                     "glBindFramebuffer(GL_FRAMEBUFFER, 0)"}));
    // A bind without a rebuild checks nothing.
    target.bind();
    EXPECT_EQ(log.take(), Texts{});
    target.setDirty(true);
    target.bind();
    EXPECT_EQ(log.take(), findings);
}

TEST_F(RenderTargetGLTest, WithoutTheSettingNothingIsChecked)
{
    gl.fail("glCheckFramebufferStatus");
    add(0, texture(2, 59));
    update();
    EXPECT_EQ(gl.countOf("glCheckFramebufferStatus"), 0u);
}

TEST_F(RenderTargetGLTest, CheckNamesEachStatus)
{
    // The status is the one of a plain function, as the table asks for one.
    static GLenum s_status = 0;
    GLEWContextStruct table = *glbinding::RecordingGL::table();
    table.kvr_common__glewCheckFramebufferStatus = [](GLenum) -> GLenum { return s_status; };
    const glbinding::ScopedTable scope(&table);
    const std::pair<GLenum, const char*> names[] = {
        {GL_FRAMEBUFFER_UNDEFINED, "GL_FRAMEBUFFER_UNDEFINED"},
        {GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
        {GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT, "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT"},
        {GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER, "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER"},
        {GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER, "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER"},
        {GL_FRAMEBUFFER_UNSUPPORTED, "GL_FRAMEBUFFER_UNSUPPORTED"},
        {GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE, "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE"},
        {GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS, "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS"},
        {0, "UNKNOWN"}};
    for (const auto& [status, name] : names)
    {
        s_status = status;
        RenderTargetGL::checkFramebuffer({}, nullptr, nullptr, nullptr);
        EXPECT_EQ(log.take()[0], "error: [RenderTargetGL] Framebuffer is not complete (" + std::string(name) + ").");
    }
}

} // namespace renderengine
