#include "GLDeviceTestSupport.h"

#include "gl/RenderTargetGL.h"
#include "gl/TextureGL.h"

#include <kavelor/SoPreferences.h>

#include <array>

namespace renderengine
{

namespace
{

using Pixel = std::array<uint8_t, 4>;

constexpr uint8_t s_depth = 17;
constexpr uint8_t s_depthStencil = 19;

/// Turns the check of framebuffers on for a scope.
struct CheckSetting
{
    CheckSetting() { SoPreferences::setBool("KVR_RENDERENGINE_CHECK_FRAMEBUFFER", true); }
    ~CheckSetting() { SoPreferences::unset("KVR_RENDERENGINE_CHECK_FRAMEBUFFER"); }
    CheckSetting(const CheckSetting&) = delete;
    CheckSetting& operator=(const CheckSetting&) = delete;
};

class RenderTargetGLDeviceTest : public ResourceDeviceTest
{
protected:
    void TearDown() override
    {
        target.destroy();
        for (const auto& texture : textures)
        {
            texture->destroy();
        }
        ResourceDeviceTest::TearDown();
    }

    static std::shared_ptr<TextureGL> makeTexture(uint32_t type = 2, uint32_t internalFormat = 21, uint32_t depth = 1)
    {
        TextureProperties description;
        description.type = type;
        description.width = 8;
        description.height = 8;
        description.depth = depth;
        description.samples = 4;
        description.internalFormat = internalFormat;
        description.format = internalFormat == 84 ? 2 : internalFormat == 81 ? 0 : 8;
        return std::make_shared<TextureGL>(description);
    }

    void add(uint8_t attachment, std::shared_ptr<TextureGL> texture, uint16_t layer = 0)
    {
        RenderTextureProperty entry;
        entry.texture = TextureHandle(static_cast<uint32_t>(textures.size()));
        entry.attachment = attachment;
        entry.layer = layer;
        properties.attachments.push_back(entry);
        textures.push_back(std::move(texture));
    }

    void build()
    {
        target.update(properties, textures);
        target.bind();
        EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum{GL_FRAMEBUFFER_COMPLETE});
    }

    static void clear(GLint buffer, float red, float green, float blue)
    {
        const std::array<float, 4> color{red, green, blue, 1};
        glClearBufferfv(GL_COLOR, buffer, color.data());
    }

    static Pixel pixel(GLenum attachment)
    {
        Pixel result{};
        glReadBuffer(attachment);
        glReadPixels(3, 3, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, result.data());
        return result;
    }

    RenderTargetProperties properties;
    RenderTargetGL::TextureList textures;
    RenderTargetGL target;
};

constexpr Pixel s_red{255, 0, 0, 255};
constexpr Pixel s_green{0, 255, 0, 255};

} // namespace

TEST_F(RenderTargetGLDeviceTest, ColourAndDepthStencilAreClearedOnTheirOwn)
{
    add(0, makeTexture());
    add(3, makeTexture());
    add(s_depthStencil, makeTexture(2, 84));
    build();
    clear(0, 1, 0, 0);
    clear(1, 0, 1, 0);
    glClearBufferfi(GL_DEPTH_STENCIL, 0, 0.5f, 7);
    EXPECT_EQ(pixel(GL_COLOR_ATTACHMENT0), s_red);
    EXPECT_EQ(pixel(GL_COLOR_ATTACHMENT3), s_green);
    float depth = 0;
    uint8_t stencil = 0;
    glReadPixels(0, 0, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    glReadPixels(0, 0, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
    EXPECT_NEAR(depth, 0.5f, 1e-4f);
    EXPECT_EQ(stencil, 7);
    EXPECT_EQ(device.takeErrors(), Texts{});
}

TEST_F(RenderTargetGLDeviceTest, ADepthTextureAloneIsComplete)
{
    add(s_depth, makeTexture(2, 81));
    build();
    EXPECT_EQ(integer(GL_DRAW_BUFFER), GL_NONE);
    EXPECT_EQ(integer(GL_READ_BUFFER), GL_NONE);
}

TEST_F(RenderTargetGLDeviceTest, EightColourAttachmentsAreComplete)
{
    for (uint8_t i = 0; i < 8; ++i)
    {
        add(i, makeTexture());
    }
    build();
    clear(7, 0, 1, 0);
    EXPECT_EQ(pixel(GL_COLOR_ATTACHMENT7), s_green);
}

TEST_F(RenderTargetGLDeviceTest, MultisampleTexturesAreCompleteAndResolve)
{
    add(0, makeTexture(3));
    build();
    EXPECT_EQ(integer(GL_SAMPLES), 4);
    clear(0, 0, 1, 0);

    RenderTargetGL resolved;
    RenderTargetProperties list;
    list.attachments.resize(1);
    const auto texture = makeTexture();
    resolved.update(list, {texture});
    glBindFramebuffer(GL_READ_FRAMEBUFFER, target.getFramebuffer());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, resolved.getFramebuffer());
    glBlitFramebuffer(0, 0, 8, 8, 0, 0, 8, 8, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    resolved.bind();
    EXPECT_EQ(pixel(GL_COLOR_ATTACHMENT0), s_green);
    resolved.destroy();
    texture->destroy();
}

TEST_F(RenderTargetGLDeviceTest, TheLayerOfEachLayeredTargetIsDrawn)
{
    struct Layered
    {
        uint32_t type;
        uint32_t depth;
        uint16_t layer;
        size_t pixelOffset;
    };
    // Array layer, slice, last face, face of the second cube.
    for (const Layered& c :
         {Layered{4, 3, 2, 2 * 64}, Layered{6, 3, 1, 64}, Layered{7, 1, 5, 5 * 64}, Layered{8, 2, 7, 7 * 64}})
    {
        SCOPED_TRACE(c.type);
        RenderTargetGL layered;
        RenderTargetProperties list;
        list.attachments.resize(1);
        list.attachments[0].layer = c.layer;
        const auto texture = makeTexture(c.type, 21, c.depth);
        layered.update(list, {texture});
        layered.bind();
        EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum{GL_FRAMEBUFFER_COMPLETE});
        clear(0, 1, 0, 0);
        texture->readback();
        Pixel found{};
        for (size_t i = 0; i < 4; ++i)
        {
            found[i] = static_cast<uint8_t>(texture->getReadbackData()[c.pixelOffset * 4 + i]);
        }
        EXPECT_EQ(found, s_red);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        layered.destroy();
        texture->destroy();
    }
}

TEST_F(RenderTargetGLDeviceTest, ATextureWithANewNameIsDrawnAfterTheNextBind)
{
    add(0, makeTexture());
    build();
    const GLuint first = target.getFramebuffer();
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    TextureProperties volume;
    volume.type = 6;
    volume.width = 8;
    volume.height = 8;
    volume.depth = 2;
    textures[0]->update(volume);
    target.bind();
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum{GL_FRAMEBUFFER_COMPLETE});
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), static_cast<GLint>(target.getFramebuffer()));
    clear(0, 0, 1, 0);
    EXPECT_EQ(pixel(GL_COLOR_ATTACHMENT0), s_green);
    EXPECT_TRUE(first == target.getFramebuffer() || glIsFramebuffer(first) == GL_FALSE);
}

TEST_F(RenderTargetGLDeviceTest, AnUpdateOfABoundTargetLeavesItBound)
{
    add(0, makeTexture());
    build();
    add(1, makeTexture());
    target.update(properties, textures);
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), static_cast<GLint>(target.getFramebuffer()));
    clear(1, 1, 0, 0);
    EXPECT_EQ(pixel(GL_COLOR_ATTACHMENT1), s_red);
}

TEST_F(RenderTargetGLDeviceTest, AnUpdateOfAnotherTargetDoesNotDisturbTheBoundOne)
{
    add(0, makeTexture());
    build();
    RenderTargetGL other;
    RenderTargetProperties list;
    list.attachments.resize(1);
    const auto texture = makeTexture();
    other.update(list, {texture});
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), static_cast<GLint>(target.getFramebuffer()));
    other.destroy();
    texture->destroy();
}

TEST_F(RenderTargetGLDeviceTest, SrgbConvertsAndStaysOn)
{
    add(0, makeTexture(2, 29));
    properties.srgb = 1;
    build();
    EXPECT_TRUE(glIsEnabled(GL_FRAMEBUFFER_SRGB));
    clear(0, 0.5f, 0.5f, 0.5f);
    EXPECT_NEAR(pixel(GL_COLOR_ATTACHMENT0)[0], 188, 1);
    glDisable(GL_FRAMEBUFFER_SRGB);
}

TEST_F(RenderTargetGLDeviceTest, TheUnusableIndexIsRefusedByTheDriver)
{
    add(16, makeTexture());
    target.update(properties, textures);
    EXPECT_FALSE(device.takeErrors().empty());
    target.destroy();
}

TEST_F(RenderTargetGLDeviceTest, TheSettingTellsWhyATargetIsNotComplete)
{
    const CheckSetting setting;
    // A colour format cannot be a depth buffer.
    add(s_depth, makeTexture());
    target.update(properties, textures);
    EXPECT_EQ(log.take(),
              (Texts{"error: [RenderTargetGL] Framebuffer is not complete (GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT).",
                     "warning: Texture attached to DEPTH_ATTACHMENT has not a depth format."}));
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), 0);
    device.takeErrors();
}

TEST_F(RenderTargetGLDeviceTest, TheSettingSaysNothingOfACompleteTarget)
{
    const CheckSetting setting;
    add(0, makeTexture());
    add(s_depthStencil, makeTexture(2, 84));
    build();
    EXPECT_EQ(log.take(), Texts{});
}

TEST_F(RenderTargetGLDeviceTest, TheCheckNamesAnIncompleteFramebuffer)
{
    target.bind();
    RenderTargetGL::checkFramebuffer({}, nullptr, nullptr, nullptr);
    const Texts lines = log.take();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0],
              "error: [RenderTargetGL] Framebuffer is not complete (GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT).");
    EXPECT_EQ(lines[1], "warning: No images are attached to this FBO.");
    device.takeErrors();
}

} // namespace renderengine
