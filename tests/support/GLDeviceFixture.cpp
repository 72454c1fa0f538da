#include "support/GLDeviceFixture.h"

#include "platform/PlatformLayer.h"
#include "support/LiveObjects.h"

#include <glbinding/gl.h>
#include <kavelor/SoPreferences.h>
#include <renderengine/WGLConstants.h>

#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace renderengine::testing
{

namespace
{

constexpr const char* s_className = "GLDeviceFixture";

void GLAPIENTRY collect(GLenum, GLenum type, GLuint, GLenum, GLsizei, const GLchar* message, const void* user)
{
    if (type == GL_DEBUG_TYPE_ERROR || type == GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR)
    {
        const auto* errors = static_cast<const std::vector<std::string>*>(user);
        const_cast<std::vector<std::string>*>(errors)->push_back(message);
    }
}

void limitVersion(GLProfile profile)
{
    // The environment keeps the text itself.
    static char s_compatibility[] = "MESA_GL_VERSION_OVERRIDE=4.1COMPAT";
    static char s_core[] = "MESA_GL_VERSION_OVERRIDE=4.1";
    static char s_language[] = "MESA_GLSL_VERSION_OVERRIDE=410";
    putenv(profile == GLProfile::Core ? s_core : s_compatibility);
    putenv(s_language);
}

PIXELFORMATDESCRIPTOR wantedFormat()
{
    PIXELFORMATDESCRIPTOR wanted{};
    wanted.nSize = sizeof(wanted);
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    wanted.iPixelType = PFD_TYPE_RGBA;
    wanted.cColorBits = 32;
    wanted.cDepthBits = 24;
    wanted.cStencilBits = 8;
    return wanted;
}

} // namespace

GLDevice::GLDevice(GLProfile profile, GLVersion version)
{
    if (version == GLVersion::Limited41)
    {
        limitVersion(profile);
    }
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", profile == GLProfile::Core);
    try
    {
        createWindow();
        createContext(profile, version);
    }
    catch (...)
    {
        release();
        throw;
    }
    glbinding::setProcAddressLoader([](const char* name) { return platform().procAddress(name); });
    m_functions.initGLEWContext();
    if (m_functions.initGLEW() != 0)
    {
        release();
        throw std::runtime_error("the functions of the test context cannot be loaded");
    }
    GLEWContextStruct& table = *m_functions.getGLEWContext();
    if (version == GLVersion::Limited41 && (table.majorVersion > 4 || table.minorVersion > 1))
    {
        // A driver that could not be told: what is decided by version follows at least.
        table.majorVersion = 4;
        table.minorVersion = 1;
    }
    LiveObjects::watch(table);
    m_scope = std::make_unique<glbinding::ScopedTable>(m_functions.getGLEWContext());
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    collectErrors();
}

GLDevice::~GLDevice()
{
    release();
}

void GLDevice::createWindow()
{
    void* module = platform().moduleHandle();
    if (!platform().getClassInfo(module, s_className))
    {
        platform().registerClass(module, s_className, WindowStyle::ClassOwnDC);
    }
    m_window = platform().createWindow(module, s_className, s_className, 0, 0, 0, 16, 16);
    m_display = m_window ? platform().getDC(m_window) : nullptr;
    const PIXELFORMATDESCRIPTOR wanted = wantedFormat();
    const int format = m_display ? platform().choosePixelFormat(m_display, wanted) : 0;
    if (format == 0 || !platform().setPixelFormat(m_display, format, &wanted))
    {
        throw std::runtime_error("there is no window for the test context");
    }
}

void GLDevice::createContext(GLProfile profile, GLVersion version)
{
    // The function that makes a context with attributes is found through a context without them.
    HGLRC plain = platform().createContext(m_display);
    if (!plain || !platform().makeCurrent(m_display, plain))
    {
        throw std::runtime_error("there is no plain context");
    }
    const auto create =
        reinterpret_cast<CreateContextAttribsFunction>(platform().procAddress("wglCreateContextAttribsARB"));
    if (create)
    {
        std::vector<int> attributes{WGL_CONTEXT_FLAGS_ARB, WGL_CONTEXT_DEBUG_BIT_ARB, WGL_CONTEXT_PROFILE_MASK_ARB,
                                    profile == GLProfile::Core ? WGL_CONTEXT_CORE_PROFILE_BIT_ARB
                                                               : WGL_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB};
        if (profile == GLProfile::Core || version == GLVersion::Limited41)
        {
            attributes.insert(attributes.end(), {WGL_CONTEXT_MAJOR_VERSION_ARB, 4, WGL_CONTEXT_MINOR_VERSION_ARB, 1});
        }
        attributes.push_back(0);
        m_context = create(m_display, nullptr, attributes.data());
    }
    platform().makeCurrent(nullptr, nullptr);
    platform().deleteContext(plain);
    if (!m_context || !platform().makeCurrent(m_display, m_context))
    {
        throw std::runtime_error("there is no debug context");
    }
}

void GLDevice::release()
{
    if (m_scope)
    {
        glDebugMessageCallback(nullptr, nullptr);
        m_scope.reset();
    }
    if (m_context)
    {
        platform().makeCurrent(nullptr, nullptr);
        platform().deleteContext(m_context);
        m_context = nullptr;
    }
    if (m_display)
    {
        platform().releaseDC(m_window, m_display);
        m_display = nullptr;
    }
    if (m_window)
    {
        platform().destroyWindow(m_window);
        platform().unregisterClass(platform().moduleHandle(), s_className);
        m_window = nullptr;
    }
}

void GLDevice::collectErrors()
{
    glDebugMessageCallback(collect, &m_errors);
}

std::vector<std::string> GLDevice::takeErrors()
{
    return std::exchange(m_errors, {});
}

GLDeviceTest::GLDeviceTest(GLProfile profile, GLVersion version) : device(profile, version) {}

void GLDeviceTest::TearDown()
{
    EXPECT_EQ(device.takeErrors(), std::vector<std::string>{}) << "GL errors that the case did not expect";
    EXPECT_EQ(LiveObjects::list(), std::vector<std::string>{}) << "GL objects that the case left behind";
}

} // namespace renderengine::testing
