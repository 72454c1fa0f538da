#include "RendererDeviceFixture.h"

namespace renderengine
{
namespace
{

template <class Renderer> class RendererPresentDeviceTest : public BothRenderersDevice<Renderer>
{
};

TYPED_TEST_SUITE(RendererPresentDeviceTest, Renderers, RendererNames);

/// A framebuffer of the host application, with colour and combined depth and stencil, bound.
class HostFramebuffer
{
public:
    HostFramebuffer()
    {
        glGenTextures(1, &m_color);
        glBindTexture(GL_TEXTURE_2D, m_color);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, pictureSize, pictureSize, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glGenTextures(1, &m_depth);
        glBindTexture(GL_TEXTURE_2D, m_depth);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH24_STENCIL8, pictureSize, pictureSize, 0, GL_DEPTH_STENCIL,
                     GL_UNSIGNED_INT_24_8, nullptr);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenFramebuffers(1, &m_framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_color, 0);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D, m_depth, 0);
        glDisable(GL_SCISSOR_TEST);
        glDisable(GL_BLEND);
        glDisable(GL_CULL_FACE);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glEnable(GL_DEPTH_TEST);
        glDepthMask(GL_TRUE);
        glDepthFunc(GL_ALWAYS);
    }
    ~HostFramebuffer()
    {
        glDeleteFramebuffers(1, &m_framebuffer);
        glDeleteTextures(1, &m_color);
        glDeleteTextures(1, &m_depth);
    }
    HostFramebuffer(const HostFramebuffer&) = delete;
    HostFramebuffer& operator=(const HostFramebuffer&) = delete;

    static Picture readColor()
    {
        Picture picture(allPixels);
        glReadPixels(0, 0, pictureSize, pictureSize, GL_RGBA, GL_UNSIGNED_BYTE, picture.data());
        return picture;
    }

    static float readDepth(GLint x, GLint y)
    {
        float depth = 0.0f;
        glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        return depth;
    }

private:
    GLuint m_framebuffer = 0;
    GLuint m_color = 0;
    GLuint m_depth = 0;
};

TYPED_TEST(RendererPresentDeviceTest, PresentCarriesColourAndDepthToTheBoundFramebuffer)
{
    this->clear(red);
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.gfxState.depthStencil.depthTest = true;
    this->drawColored(scene, green, this->makeStrip(rectangle(-1, 0, -0.5f)));
    this->renderer->finish();
    this->renderer->setPresentColorTexture(this->colorTexture);
    this->renderer->setPresentDepthTexture(this->depthTexture);
    this->renderer->setSize(pictureSize, pictureSize);

    const HostFramebuffer host;
    this->renderer->finishFrame();
    for (int i = 0; i < 2; ++i)
    {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        EXPECT_TRUE(this->renderer->present());
        this->renderer->presentFrameSync();
        const Picture picture = host.readColor();
        EXPECT_EQ(this->count(picture, green), allPixels / 2);
        EXPECT_EQ(this->count(picture, red), allPixels / 2);
        EXPECT_NEAR(host.readDepth(0, 0), 0.25f, 0.001f);
        EXPECT_NEAR(host.readDepth(15, 0), 1.0f, 0.001f);
        this->renderer->begin();
    }
}

TYPED_TEST(RendererPresentDeviceTest, ReversePresentTakesTheBoundFramebufferOver)
{
    this->clear();
    this->renderer->setPresentColorTexture(this->colorTexture);
    this->renderer->setPresentDepthTexture(this->depthTexture);
    this->renderer->setSize(pictureSize, pictureSize);
    const HostFramebuffer host;
    glClearColor(0, 0, 1, 1);
    glClearDepth(0.5);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    this->renderer->getReversePresentFrame()->reversePresentFrame(this->renderer->updatePresentEventArg());
    this->renderer->presentFrameSync();
    this->renderer->begin();
    EXPECT_EQ(this->count(this->read(), blue), allPixels);
    // The depth came too: only what is nearer shows.
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.gfxState.depthStencil.depthTest = true;
    this->drawColored(scene, red, this->makeStrip(rectangle(-1, 0, -0.5f)));
    this->drawColored(scene, green, this->makeStrip(rectangle(0, 1, 0.5f)));
    const Picture picture = this->read();
    EXPECT_EQ(this->count(picture, red), allPixels / 2);
    EXPECT_EQ(this->count(picture, blue), allPixels / 2);
}

TYPED_TEST(RendererPresentDeviceTest, NothingLivesAfterDestroy)
{
    this->clear();
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    const DrawProperties strip = this->makeStrip(rectangle(-1, 1));
    this->draw(scene, {strip, strip});
    this->renderer->finish();
    this->renderer->destroy();
    // The program in use goes only now, and its shaders with it.
    glUseProgram(0);
    for (GLuint name = 1; name < 64; ++name)
    {
        EXPECT_FALSE(glIsBuffer(name)) << name;
        EXPECT_FALSE(glIsTexture(name)) << name;
        EXPECT_FALSE(glIsFramebuffer(name)) << name;
        EXPECT_FALSE(glIsProgram(name)) << name;
        EXPECT_FALSE(glIsShader(name)) << name;
        EXPECT_FALSE(glIsVertexArray(name)) << name;
    }
}

/// No fixed function, no point sprites, no array 0.
class RendererCoreDeviceTest : public RendererDevice
{
protected:
    RendererCoreDeviceTest() : RendererDevice(GLProfile::Core) {}
    void SetUp() override { startOnDevice<RendererGL46>(); }
};

TEST_F(RendererCoreDeviceTest, DrawsAndPresentsInACoreContext)
{
    clear(red);
    Scene scene = makeDeviceScene(link({{0, plainVertexText}, {2, colorFragmentText}}));
    const DrawProperties strip = makeStrip(rectangle(-1, 0));
    drawColored(scene, green, strip);
    renderer->finish();
    renderer->setPresentColorTexture(colorTexture);
    renderer->setPresentDepthTexture(depthTexture);
    renderer->setSize(pictureSize, pictureSize);
    const HostFramebuffer host;
    renderer->finishFrame();
    renderer->present();
    renderer->presentFrameSync();
    EXPECT_EQ(count(host.readColor(), green), allPixels / 2);
}

} // namespace
} // namespace renderengine
