#include "context/ContextFactory.h"

#include "context/ContextGL.h"

#include <kavelor/SoPreferences.h>

#include <gtest/gtest.h>

#include <memory>

namespace renderengine
{
namespace
{

class ContextFactoryTest : public ::testing::Test
{
protected:
    ~ContextFactoryTest() override
    {
        SoPreferences::unset("KVR_RENDERENGINE_MULTITHREAD");
        SoPreferences::unset("KVR_OPENGL_DEBUG");
        SoPreferences::unset("KVR_RENDERENGINE_RENDERER");
    }
};

TEST_F(ContextFactoryTest, FlagsAreThreeByDefault)
{
    EXPECT_EQ(contextFlags(), 3);
}

TEST_F(ContextFactoryTest, FlagsFollowTheSettingsOfTheMoment)
{
    SoPreferences::setBool("KVR_RENDERENGINE_MULTITHREAD", false);
    EXPECT_EQ(contextFlags(), 2);
    SoPreferences::setBool("KVR_OPENGL_DEBUG", true);
    EXPECT_EQ(contextFlags(), 6);
    SoPreferences::setBool("KVR_RENDERENGINE_MULTITHREAD", true);
    EXPECT_EQ(contextFlags(), 7);
}

TEST_F(ContextFactoryTest, CreateInstanceMakesAContextThatIsNotYetInitialised)
{
    const std::unique_ptr<ContextInterface> context(ContextInterface::createInstance());
    ASSERT_NE(context, nullptr);
    EXPECT_FALSE(context->isValid());
    EXPECT_NE(dynamic_cast<ContextGL*>(context.get()), nullptr);
}

TEST_F(ContextFactoryTest, EveryOtherRendererValueMakesAnOpenGLContext)
{
    for (const char* value : {"GL", "gl41", "LOG", "NULL", "GL46", "nonsense"})
    {
        SoPreferences::setString("KVR_RENDERENGINE_RENDERER", value);
        const std::unique_ptr<ContextInterface> context(createContext(ContextShare));
        EXPECT_NE(dynamic_cast<ContextGL*>(context.get()), nullptr) << value;
    }
}

} // namespace
} // namespace renderengine
