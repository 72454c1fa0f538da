// The engine on Mesa's other drivers. A driver reads the environment when it is loaded, so each case needs a process of
// its own and sets the environment first.

#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "gl/RendererGL41.h"
#include "gl/RendererGL46.h"
#include "support/ContextObjects.h"
#include "support/LogLines.h"
#include "support/Triangle.h"

#include <glbinding/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kavelor/SoPreferences.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace renderengine
{
namespace
{

using testing::drawTriangle;
using ::testing::HasSubstr;
using testing::isTriangle;

void setVariable(const char* name, const std::string& value)
{
    setenv(name, value.c_str(), 1);
}

/// OpenGL 4.6 on Vulkan, which draws on the processor.
void useZinkOverLavapipe()
{
    std::string description;
    for (const auto& entry : std::filesystem::directory_iterator("/usr/share/vulkan/icd.d"))
    {
        if (entry.path().filename().string().rfind("lvp_icd", 0) == 0)
        {
            description = entry.path().string();
        }
    }
    if (description.empty())
    {
        throw std::runtime_error("lavapipe is not installed");
    }
    setVariable("VK_ICD_FILENAMES", description);
    setVariable("GALLIUM_DRIVER", "zink");
    setVariable("MESA_LOADER_DRIVER_OVERRIDE", "zink");
    setVariable("LIBGL_ALWAYS_SOFTWARE", "1");
}

void limitVersion(const char* version, const char* language)
{
    setVariable("MESA_GL_VERSION_OVERRIDE", version);
    setVariable("MESA_GLSL_VERSION_OVERRIDE", language);
}

TEST(MesaZinkDeviceTest, IsATrue46AndDraws)
{
    useZinkOverLavapipe();
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    const ContextInfo& info = context.getContextInfo();
    EXPECT_THAT(info.renderer.toStdString(), HasSubstr("zink"));
    EXPECT_EQ(info.version, 460);
    EXPECT_EQ(info.isVersion46, 1);
    EXPECT_EQ(info.shadingLanguageVersion, 460);
    EXPECT_EQ(info.hasAtomicCounters, 1);
    EXPECT_EQ(info.hasImageLoadStore, 1);
    EXPECT_NE(dynamic_cast<RendererGL46*>(context.getRenderer()), nullptr);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(MesaZinkDeviceTest, CoreProfileDraws)
{
    useZinkOverLavapipe();
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    EXPECT_EQ(context.getContextInfo().version, 460);
    EXPECT_EQ(context.getContextInfo().profile, GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(MesaZinkDeviceTest, CanBeHeldTo41BySetting)
{
    useZinkOverLavapipe();
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", "gl41");
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    EXPECT_EQ(context.getContextInfo().version, 410);
    EXPECT_EQ(context.getContextInfo().isVersion46, 0);
    EXPECT_EQ(dynamic_cast<RendererGL46*>(context.getRenderer()), nullptr);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(MesaVersionDeviceTest, OlderThan43TakesTheOlderRenderer)
{
    limitVersion("4.1COMPAT", "410");
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    EXPECT_EQ(context.getContextInfo().version, 410);
    EXPECT_NE(dynamic_cast<RendererGL41*>(context.getRenderer()), nullptr);
    EXPECT_EQ(dynamic_cast<RendererGL46*>(context.getRenderer()), nullptr);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(MesaVersionDeviceTest, CoreRequestFallsBackTo41)
{
    // A core context of 4.6 is refused here, and the second request is granted.
    limitVersion("4.1", "410");
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    EXPECT_EQ(context.getContextInfo().version, 410);
    EXPECT_EQ(context.getContextInfo().profile, GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_EQ(dynamic_cast<RendererGL46*>(context.getRenderer()), nullptr);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
}

TEST(MesaVersionDeviceTest, From43OnTheNewerRendererIsTaken)
{
    limitVersion("4.3COMPAT", "430");
    ContextGL context(ContextShare);
    context.init();
    EXPECT_EQ(context.getContextInfo().version, 430);
    EXPECT_EQ(context.getContextInfo().isVersion46, 0);
    EXPECT_NE(dynamic_cast<RendererGL46*>(context.getRenderer()), nullptr);
    EXPECT_TRUE(isTriangle(drawTriangle(context)));
    testing::deleteObjects(context);
}

TEST(MesaVersionDeviceTest, OlderThan41IsToldAndGoesOn)
{
    limitVersion("4.0COMPAT", "400");
    ContextGL context(ContextShare);
    testing::LogLines log;
    context.init();
    EXPECT_EQ(context.getContextInfo().version, 400);
    EXPECT_THAT(
        log.take(),
        ::testing::Contains("error: Kavelor 10 requires at least OpenGL 4.1 support while this device only supports "
                            "OpenGL version 4.0"));
    EXPECT_TRUE(context.isValid());
}

} // namespace
} // namespace renderengine
