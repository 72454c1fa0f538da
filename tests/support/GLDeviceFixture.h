#pragma once

#include <renderengine/PlatformTypes.h>

#include <glbinding/CurrentTable.h>
#include <glbinding/SoGLGlew.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace renderengine::testing
{

enum class GLProfile
{
    Compatibility,
    Core
};

enum class GLVersion
{
    /// What the driver offers.
    Newest,
    /// Mesa drivers are told to stop at 4.1. They read that when they are loaded, so the case needs a process of its
    /// own.
    Limited41
};

/// A debug context on a hidden window, current on the thread that made the object, with its functions as the thread's
/// table. Synchronous debug output collects what the driver reports as an error. Throws std::runtime_error when the
/// system gives no such context. A core profile also sets `KVR_RENDERENGINE_USE_GLCORE`. LiveObjects watches the
/// table.
class GLDevice
{
public:
    explicit GLDevice(GLProfile profile = GLProfile::Compatibility, GLVersion version = GLVersion::Newest);
    ~GLDevice();
    GLDevice(const GLDevice&) = delete;
    GLDevice& operator=(const GLDevice&) = delete;

    /// The texts of the errors so far, which are then forgotten.
    std::vector<std::string> takeErrors();
    /// Installs the collecting callback again, after code that installed one of its own.
    void collectErrors();

    HDC getDisplay() const { return m_display; }
    HGLRC getContext() const { return m_context; }

private:
    void createWindow();
    void createContext(GLProfile profile, GLVersion version);
    void release();

    HWND m_window = nullptr;
    HDC m_display = nullptr;
    HGLRC m_context = nullptr;
    SoGLGlew m_functions;
    std::unique_ptr<glbinding::ScopedTable> m_scope;
    std::vector<std::string> m_errors;
};

/// A case on a real context. It fails when an error was reported that it has not taken, and when it leaves GL objects.
class GLDeviceTest : public ::testing::Test
{
protected:
    explicit GLDeviceTest(GLProfile profile = GLProfile::Compatibility, GLVersion version = GLVersion::Newest);
    void TearDown() override;

    GLDevice device;
};

} // namespace renderengine::testing
