#include "FakeLoader.h"

#include <glbinding/GLEnums.h>
#include <glbinding/SoGLEW.h>
#include <glbinding/SoGLGlew.h>
#include <kavelor/SoError.h>

#include <gtest/gtest.h>

namespace
{
using renderengine::glbinding::g_silentTable;

using Reports = std::vector<std::string>;

/// Collects what is reported through SoDebugError, as "function: text".
class FunctionLoading : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_formerHandler =
            SoDebugError::setHandler([this](const SbString& function, const SbString& message, SoDebugError::Severity)
                                     { reports.push_back(function.toStdString() + ": " + message.toStdString()); });
    }

    void TearDown() override { SoDebugError::setHandler(m_formerHandler); }

    static GLEWContextStruct load(const FakeContext& context)
    {
        const FakeLoader loader(context);
        GLEWContextStruct table;
        EXPECT_EQ(SoGLEW::glewContextInit(&table), 0u);
        return table;
    }

    Reports reports;

private:
    SoDebugError::Handler m_formerHandler;
};

FakeContext versionOnly(const char* version, GLint profileMask = GL_CONTEXT_COMPATIBILITY_PROFILE_BIT)
{
    FakeContext context;
    context.version = version;
    context.profileMask = profileMask;
    return context;
}

TEST_F(FunctionLoading, ReadsVersionOfDriverText)
{
    const GLEWContextStruct table = load(versionOnly("4.5 (Compatibility Profile) Mesa 22.3.6"));
    EXPECT_EQ(table.majorVersion, 4);
    EXPECT_EQ(table.minorVersion, 5);
    EXPECT_FALSE(table.coreProfile);
}

TEST_F(FunctionLoading, TakesAllOfTheVersionFromTheLoader)
{
    const GLEWContextStruct table = load(versionOnly("4.6"));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewBindBuffer));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewBegin));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewPolygonOffsetClamp));
}

TEST_F(FunctionLoading, NewerFunctionsAreAbsentThoughTheLoaderKnowsTheirNames)
{
    const GLEWContextStruct table = load(versionOnly("4.1"));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewViewportArrayv));
    EXPECT_FALSE(isLoaded(table.kvr_common__glewDrawElementsInstancedBaseInstance));
    EXPECT_FALSE(isLoaded(table.kvr_common__glewDispatchCompute));
    EXPECT_FALSE(isLoaded(table.kvr_common__glewMaxShaderCompilerThreadsARB));
}

TEST_F(FunctionLoading, AbsentFunctionReportsOnceAndReturnsZero)
{
    const GLEWContextStruct table = load(versionOnly("4.1"));
    EXPECT_EQ(table.kvr_common__glewGetProgramResourceIndex(1, GL_UNIFORM, "color"), 0u);
    EXPECT_EQ(table.kvr_common__glewGetProgramResourceIndex(1, GL_UNIFORM, "color"), 0u);
    table.kvr_common__glewDispatchCompute(1, 1, 1);
    EXPECT_EQ(reports,
              (Reports{"glGetProgramResourceIndex: glGetProgramResourceIndex is not available in this OpenGL context "
                       "(version 4.1).",
                       "glDispatchCompute: glDispatchCompute is not available in this OpenGL context (version 4.1)."}));
}

TEST_F(FunctionLoading, AbsentFunctionReportsOnceForAllContexts)
{
    const GLEWContextStruct first = load(versionOnly("4.1"));
    const GLEWContextStruct second = load(versionOnly("4.2"));
    first.kvr_common__glewDispatchComputeIndirect(0);
    second.kvr_common__glewDispatchComputeIndirect(0);
    EXPECT_EQ(reports.size(), 1u);
}

TEST_F(FunctionLoading, PromisedFunctionWithoutAddressIsAbsent)
{
    FakeContext context = versionOnly("4.6");
    context.unknownNames = {"glDrawArrays"};
    const GLEWContextStruct table = load(context);
    table.kvr_common__glewDrawArrays(GL_POINTS, 0, 1);
    EXPECT_EQ(reports, Reports{"glDrawArrays: glDrawArrays is not available in this OpenGL context (version 4.6)."});
}

TEST_F(FunctionLoading, CoreProfileLacksCompatibilityFunctions)
{
    const GLEWContextStruct table = load(versionOnly("4.5", GL_CONTEXT_CORE_PROFILE_BIT));
    EXPECT_TRUE(table.coreProfile);
    EXPECT_FALSE(isLoaded(table.kvr_common__glewBegin));
    EXPECT_FALSE(isLoaded(table.kvr_common__glewMatrixMode));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewBindBuffer));
}

TEST_F(FunctionLoading, CoreProfileRegainsWhatALaterVersionBringsBack)
{
    EXPECT_FALSE(isLoaded(load(versionOnly("4.2", GL_CONTEXT_CORE_PROFILE_BIT)).kvr_common__glewGetPointerv));
    EXPECT_TRUE(isLoaded(load(versionOnly("4.3", GL_CONTEXT_CORE_PROFILE_BIT)).kvr_common__glewGetPointerv));
    EXPECT_TRUE(isLoaded(load(versionOnly("4.2")).kvr_common__glewGetPointerv));
}

TEST_F(FunctionLoading, Version31WithoutCompatibilityExtensionCountsAsCore)
{
    FakeContext context = versionOnly("3.1", 0);
    EXPECT_FALSE(isLoaded(load(context).kvr_common__glewBegin));
    context.extensions = {"GL_ARB_compatibility"};
    EXPECT_TRUE(isLoaded(load(context).kvr_common__glewBegin));
}

TEST_F(FunctionLoading, ForwardCompatibleContextCountsAsCore)
{
    FakeContext context = versionOnly("3.0", 0);
    context.contextFlags = GL_CONTEXT_FLAG_FORWARD_COMPATIBLE_BIT;
    const GLEWContextStruct table = load(context);
    EXPECT_FALSE(isLoaded(table.kvr_common__glewBegin));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewBindFramebuffer));
}

TEST_F(FunctionLoading, ExtensionBringsFunctionsOfALaterVersion)
{
    FakeContext context = versionOnly("4.1");
    context.extensions = {"GL_KHR_debug", "GL_ARB_program_interface_query", "GL_ARB_buffer_storage"};
    const GLEWContextStruct table = load(context);
    EXPECT_TRUE(isLoaded(table.kvr_common__glewDebugMessageCallback));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewPushDebugGroup));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewGetProgramResourceName));
    EXPECT_TRUE(isLoaded(table.kvr_common__glewBufferStorage));
    EXPECT_FALSE(isLoaded(table.kvr_common__glewDispatchCompute));
    EXPECT_TRUE(table.kvr_common__GLEW_KHR_debug);
    EXPECT_TRUE(table.kvr_common__GLEW_ARB_buffer_storage);
    EXPECT_FALSE(table.kvr_common__GLEW_ARB_compute_shader);
}

TEST_F(FunctionLoading, SuffixedFunctionNeedsItsExtension)
{
    FakeContext context = versionOnly("4.6");
    EXPECT_FALSE(isLoaded(load(context).kvr_common__glewActiveTextureARB));
    context.extensions = {"GL_ARB_multitexture"};
    EXPECT_TRUE(isLoaded(load(context).kvr_common__glewActiveTextureARB));
}

TEST_F(FunctionLoading, WithoutLoaderAllEntriesAreSilent)
{
    GLEWContextStruct table;
    EXPECT_EQ(SoGLEW::glewContextInit(&table), SoGLEW::NO_LOADER);
    EXPECT_EQ(table.kvr_common__glewGetError(), 0u);
    table.kvr_common__glewDrawArrays(GL_POINTS, 0, 1);
    EXPECT_EQ(table.majorVersion, 0);
    EXPECT_EQ(reports, Reports{});
}

TEST_F(FunctionLoading, WithoutCurrentContextAllEntriesAreSilent)
{
    FakeContext context;
    context.version = nullptr;
    const FakeLoader loader(context);
    GLEWContextStruct table;
    EXPECT_EQ(SoGLEW::glewContextInit(&table), SoGLEW::NO_GL_VERSION);
    EXPECT_EQ(table.kvr_common__glewBindBuffer, g_silentTable.kvr_common__glewBindBuffer);
    EXPECT_EQ(table.kvr_common__glewMapBuffer(GL_ARRAY_BUFFER, GL_READ_ONLY), nullptr);
    EXPECT_EQ(reports, Reports{});
}

TEST_F(FunctionLoading, EmbeddedVersionTextIsNoVersion)
{
    const FakeLoader loader(versionOnly("OpenGL ES 3.2"));
    GLEWContextStruct table;
    EXPECT_EQ(SoGLEW::glewContextInit(&table), SoGLEW::NO_GL_VERSION);
}

TEST_F(FunctionLoading, NullTableIsAnError)
{
    const FakeLoader loader(versionOnly("4.6"));
    EXPECT_NE(SoGLEW::glewContextInit(nullptr), 0u);
    EXPECT_NE(SoGLEW::wglewContextInit(nullptr), 0u);
}

TEST_F(FunctionLoading, WGLFunctionsFollowTheDisplaysList)
{
    FakeContext context = versionOnly("4.6");
    context.wglExtensions = "WGL_ARB_extensions_string WGL_ARB_create_context WGL_ARB_create_context_profile";
    const FakeLoader loader(context);
    WGLEWContextStruct table;
    EXPECT_EQ(SoGLEW::wglewContextInit(&table), 0u);
    EXPECT_TRUE(isLoaded(table.kvr_common__wglewCreateContextAttribsARB));
    EXPECT_TRUE(table.kvr_common__WGLEW_ARB_create_context_profile);
    EXPECT_FALSE(isLoaded(table.kvr_common__wglewSwapIntervalEXT));
    EXPECT_EQ(table.kvr_common__wglewSwapIntervalEXT(1), 0);
}

TEST_F(FunctionLoading, PlatformWithoutWGLGetsSilentWGLEntries)
{
    const FakeLoader loader(versionOnly("4.6"));
    WGLEWContextStruct table;
    EXPECT_EQ(SoGLEW::wglewContextInit(&table), 0u);
    EXPECT_EQ(table.kvr_common__wglewCreateContextAttribsARB(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(reports, Reports{});
}

TEST_F(FunctionLoading, BindingObjectOwnsTablesWithStableAddresses)
{
    SoGLGlew glew;
    GLEWContextStruct* table = glew.getGLEWContext();
    EXPECT_FALSE(glew.ivGlewUseContext);
    EXPECT_EQ(table->kvr_common__glewGetError(), 0u);
    const FakeLoader loader(versionOnly("4.4"));
    glew.initGLEWContext();
    EXPECT_EQ(glew.initGLEW(), 0u);
    EXPECT_TRUE(glew.ivGlewUseContext);
    EXPECT_EQ(glew.getGLEWContext(), table);
    EXPECT_EQ(table->minorVersion, 4);
    glew.initGLEWContext();
    EXPECT_FALSE(glew.ivGlewUseContext);
    EXPECT_EQ(table->minorVersion, 0);
}

TEST_F(FunctionLoading, BindingObjectWithoutContextStaysSilent)
{
    SoGLGlew glew;
    glew.initGLEWContext();
    EXPECT_EQ(glew.initGLEW(), SoGLEW::NO_LOADER);
    EXPECT_FALSE(glew.ivGlewUseContext);
    EXPECT_EQ(glew.getGLEWContext()->kvr_common__glewCreateProgram(), 0u);
}
} // namespace
