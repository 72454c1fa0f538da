#include <glbinding/SoGLGlew.h>
#include <glbinding/gl.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
namespace glbinding = renderengine::glbinding;

void* load(const char* name)
{
    return reinterpret_cast<void*>(eglGetProcAddress(name));
}

/// A context of the driver without a window or surface.
class FunctionTableDeviceTest : public ::testing::Test
{
protected:
    void createContext(EGLint profile, EGLint minorVersion)
    {
        m_display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
        ASSERT_NE(m_display, EGL_NO_DISPLAY);
        ASSERT_TRUE(eglInitialize(m_display, nullptr, nullptr));
        ASSERT_TRUE(eglBindAPI(EGL_OPENGL_API));
        const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                     4,
                                     EGL_CONTEXT_MINOR_VERSION,
                                     minorVersion,
                                     EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                     profile,
                                     EGL_NONE};
        m_context = eglCreateContext(m_display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes);
        ASSERT_NE(m_context, EGL_NO_CONTEXT);
        ASSERT_TRUE(eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context));
        glbinding::setProcAddressLoader(&load);
        glew.initGLEWContext();
        ASSERT_EQ(glew.initGLEW(), 0u);
        glbinding::setCurrentTable(glew.getGLEWContext());
    }

    void TearDown() override
    {
        glbinding::setCurrentTable(nullptr);
        glbinding::setProcAddressLoader(nullptr);
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(m_display, m_context);
        eglTerminate(m_display);
    }

    SoGLGlew glew;

private:
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLContext m_context = EGL_NO_CONTEXT;
};

TEST_F(FunctionTableDeviceTest, CompatibilityContextDrawsThroughItsTable)
{
    createContext(EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT, 5);
    const GLEWContextStruct& table = *glew.getGLEWContext();
    EXPECT_EQ(table.majorVersion, 4);
    EXPECT_GE(table.minorVersion, 5);
    EXPECT_FALSE(table.coreProfile);
    EXPECT_TRUE(table.kvr_common__GLEW_KHR_debug);
    const GLubyte* version = glGetString(GL_VERSION);
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(version)).substr(0, 2), "4.");

    GLuint framebuffer = 0;
    GLuint texture = 0;
    glGenFramebuffers(1, &framebuffer);
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    ASSERT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    GLubyte pixel[4] = {};
    glReadPixels(1, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    EXPECT_EQ(pixel[0], 0);
    EXPECT_EQ(pixel[1], 255);
    glMatrixMode(GL_MODELVIEW);
    glActiveTextureARB(GL_TEXTURE0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &texture);
}

TEST_F(FunctionTableDeviceTest, CoreContextHasNoFixedFunction)
{
    createContext(EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, 1);
    const GLEWContextStruct& table = *glew.getGLEWContext();
    EXPECT_TRUE(table.coreProfile);
    EXPECT_GE(table.majorVersion * 10 + table.minorVersion, 41);
    EXPECT_NE(load("glBegin"), nullptr) << "the loader knows the name all the same";
    EXPECT_NE(reinterpret_cast<void*>(table.kvr_common__glewBegin), load("glBegin"));
    EXPECT_EQ(reinterpret_cast<void*>(table.kvr_common__glewBindBuffer), load("glBindBuffer"));
}
} // namespace
