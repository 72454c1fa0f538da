#include "context/ContextBase.h"
#include "renderer/RendererBase.h"
#include "support/VirtualSlot.h"

#include <renderengine/ContextInterface.h>
#include <renderengine/RenderCache.h>
#include <renderengine/TaskInterface.h>

#include <gtest/gtest.h>

#include <vector>

namespace renderengine
{
namespace
{

using testing::DESTRUCTOR_SLOTS;
using testing::slotOf;

template <class Command> size_t overload()
{
    return slotOf(static_cast<void (RendererBase::*)(Command&)>(&RendererBase::execute));
}

template <class Properties> size_t rendererCreate()
{
    return slotOf(
        static_cast<ShaderParameterHandle (RendererBase::*)(const Properties&)>(&RendererBase::createShaderParameter));
}

template <class Properties> size_t rendererUpdate()
{
    return slotOf(static_cast<void (RendererBase::*)(const ShaderParameterHandle&, const Properties&)>(
        &RendererBase::updateShaderParameter));
}

TEST(RendererBaseTableTest, Has173VirtualOperationsInTheirOrder)
{
    const std::vector<size_t> expected = {
        slotOf(&RendererBase::canPresent),
        slotOf(&RendererBase::getPresentFrame),
        slotOf(&RendererBase::present),
        slotOf(&RendererBase::getReversePresentFrame),
#define RENDERENGINE_SLOT(COMMAND) overload<COMMAND>(),
        RENDERENGINE_COMMANDS(RENDERENGINE_SLOT)
#undef RENDERENGINE_SLOT
            slotOf(static_cast<void (RendererBase::*)()>(&RendererBase::execute)),
        slotOf(&RendererBase::getMappedBufferPointer),
#define RENDERENGINE_SLOT(PROPERTIES) rendererCreate<PROPERTIES>(),
        RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_SLOT)
#undef RENDERENGINE_SLOT
#define RENDERENGINE_SLOT(PROPERTIES) rendererUpdate<PROPERTIES>(),
            RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_SLOT)
#undef RENDERENGINE_SLOT
                slotOf(&RendererBase::begin),
        slotOf(&RendererBase::finish),
        slotOf(&RendererBase::init),
        slotOf(&RendererBase::destroy),
        slotOf(&RendererBase::executeResourceCommands),
        slotOf(&RendererBase::readbackTexture),
        slotOf(&RendererBase::presentFrameSync),
        slotOf(&RendererBase::finishFrame),
        slotOf(&RendererBase::updatePresentEventArg),
        slotOf(&RendererBase::captureFrame),
        slotOf(&RendererBase::generateDrawHandle),
        slotOf(&RendererBase::generateDrawPropertiesHandle),
        slotOf(&RendererBase::generateBufferHandle),
        slotOf(&RendererBase::generateVertexBufferHandle),
        slotOf(&RendererBase::generateIndexBufferHandle),
        slotOf(&RendererBase::generateShaderBufferHandle),
        slotOf(&RendererBase::generateTextureImageHandle),
        slotOf(&RendererBase::generateSamplerHandle),
        slotOf(&RendererBase::generateTextureHandle),
        slotOf(&RendererBase::generateRenderTargetHandle),
        slotOf(&RendererBase::generateViewportHandle),
        slotOf(&RendererBase::generateShaderObjectHandle),
        slotOf(&RendererBase::generateShaderProgramHandle),
        slotOf(&RendererBase::generateShaderParameterHandle),
        slotOf(&RendererBase::generateQueryHandle),
    };
    ASSERT_EQ(expected.size() + 1, 173u);
    for (size_t i = 0; i < expected.size(); ++i)
    {
        EXPECT_EQ(expected[i], i + DESTRUCTOR_SLOTS);
    }
}

TEST(RendererBaseTableTest, OverloadsBeginWithBlitAndEndWithClear)
{
    EXPECT_EQ(overload<CommandTask>(), overload<CommandBlit>() + 10);
    EXPECT_EQ(overload<CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbMatrix>>>(),
              overload<CommandBlit>() + 15);
    EXPECT_EQ(overload<CommandCreateShaderParameter<ShaderParameterArrayProperties<SbMatrix>>>(),
              overload<CommandBlit>() + 34);
    EXPECT_EQ(overload<CommandDestroyShaderProgram>(), overload<CommandBlit>() + 53);
    EXPECT_EQ(overload<CommandClearRT>(), overload<CommandBlit>() + 102);
}

template <class Properties> size_t contextCreate()
{
    return slotOf(static_cast<ShaderParameterHandle (ContextInterface::*)(const Properties&)>(
        &ContextInterface::createShaderParameter));
}

template <class Properties> size_t contextUpdate()
{
    return slotOf(static_cast<void (ContextInterface::*)(const ShaderParameterHandle&, const Properties&)>(
        &ContextInterface::updateShaderParameter));
}

TEST(ContextInterfaceTableTest, VirtualOperationsStandInTheirOrder)
{
    using C = ContextInterface;
    const std::vector<size_t> expected = {
        slotOf(&C::canPresent),
        slotOf(&C::getPresentFrame),
        slotOf(&C::present),
        slotOf(&C::getReversePresentFrame),
        slotOf(&C::isValid),
        slotOf(&C::init),
        slotOf(&C::getContextInfo),
        slotOf(&C::submit),
        slotOf(&C::execute),
        slotOf(&C::discardFrame),
        slotOf(&C::presentFrameSync),
        slotOf(&C::executeResourceCommands),
        slotOf(&C::createDraw),
        slotOf(&C::updateDraw),
        slotOf(&C::renderTask),
        slotOf(&C::destroyDraw),
        slotOf(&C::createDrawProperties),
        slotOf(&C::updateDrawProperties),
        slotOf(&C::destroyDrawProperties),
        slotOf(&C::addDrawProperties),
        slotOf(&C::removeDrawProperties),
        slotOf(&C::removeAllDrawProperties),
        slotOf(&C::createBuffer),
        slotOf(&C::destroyBuffer),
        slotOf(&C::resizeBuffer),
        slotOf(&C::updateBuffer),
        slotOf(&C::mapBuffer),
        slotOf(&C::unmapBuffer),
        slotOf(&C::copyBuffer),
        slotOf(&C::addTask),
        slotOf(&C::addEndTask),
        slotOf(&C::createVertexBuffer),
        slotOf(&C::updateVertexBuffer),
        slotOf(&C::destroyVertexBuffer),
        slotOf(&C::createIndexBuffer),
        slotOf(&C::updateIndexBuffer),
        slotOf(&C::destroyIndexBuffer),
        slotOf(&C::createShaderBuffer),
        slotOf(&C::updateShaderBuffer),
        slotOf(&C::destroyShaderBuffer),
        slotOf(&C::createTextureImage),
        slotOf(&C::updateTextureImage),
        slotOf(&C::destroyTextureImage),
        slotOf(&C::createSampler),
        slotOf(&C::updateSampler),
        slotOf(&C::destroySampler),
        slotOf(&C::createTexture),
        slotOf(&C::updateTexture),
        slotOf(&C::resizeTexture),
        slotOf(&C::updateTextureBatchData),
        slotOf(&C::readbackTexture),
        slotOf(&C::destroyTexture),
        slotOf(&C::createRenderTarget),
        slotOf(&C::destroyRenderTarget),
        slotOf(&C::updateRenderTarget),
        slotOf(&C::createViewport),
        slotOf(&C::destroyViewport),
        slotOf(&C::updateViewport),
        slotOf(&C::createShaderObject),
        slotOf(&C::getShaderObjectLog),
        slotOf(&C::destroyShaderObject),
        slotOf(&C::createShaderProgram),
        slotOf(&C::getShaderProgramLog),
        slotOf(&C::destroyShaderProgram),
#define RENDERENGINE_SLOT(PROPERTIES) contextCreate<PROPERTIES>(),
        RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_SLOT)
#undef RENDERENGINE_SLOT
#define RENDERENGINE_SLOT(PROPERTIES) contextUpdate<PROPERTIES>(),
            RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_SLOT)
#undef RENDERENGINE_SLOT
                slotOf(&C::destroyShaderParameter),
        slotOf(&C::createQuery),
        slotOf(&C::getQueryResult),
        slotOf(&C::destroyQuery),
        slotOf(&C::setSize),
        slotOf(&C::getPresentRenderTarget),
        slotOf(&C::getReversePresentRenderTarget),
        slotOf(&C::setPresentRenderTarget),
        slotOf(&C::setReversePresentRenderTarget),
        slotOf(&C::getPresentColorTexture),
        slotOf(&C::setPresentColorTexture),
        slotOf(&C::getPresentDepthTexture),
        slotOf(&C::setPresentDepthTexture),
        slotOf(&C::flush),
        slotOf(&C::updatePresentEventArg),
    };
    for (size_t i = 0; i < expected.size(); ++i)
    {
        EXPECT_EQ(expected[i], i + DESTRUCTOR_SLOTS);
    }
    EXPECT_EQ(slotOf(&ContextBase::makeCurrent), expected.size() + DESTRUCTOR_SLOTS);
    EXPECT_EQ(slotOf(&ContextBase::doneCurrent), expected.size() + DESTRUCTOR_SLOTS + 1);
}

template <class Properties> size_t cacheUpdate()
{
    return slotOf(static_cast<void (RenderCache::*)(const ShaderParameterHandle&, const Properties&)>(
        &RenderCache::updateShaderParameter));
}

TEST(RenderCacheTableTest, UpdatesOfParametersStandAheadOfThatOfADraw)
{
    const std::vector<size_t> expected = {
#define RENDERENGINE_SLOT(PROPERTIES) cacheUpdate<PROPERTIES>(),
        RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_SLOT)
#undef RENDERENGINE_SLOT
            slotOf(&RenderCache::updateDraw),
    };
    ASSERT_EQ(expected.size(), 20u);
    for (size_t i = 0; i < expected.size(); ++i)
    {
        EXPECT_EQ(expected[i], i + DESTRUCTOR_SLOTS);
    }
}

TEST(CommandBaseTableTest, TheDestructorStandsBetweenExecuteAndName)
{
    EXPECT_EQ(slotOf(&CommandBase::execute), 0u);
    EXPECT_EQ(slotOf(&CommandBase::name), 1 + DESTRUCTOR_SLOTS);
}

TEST(TaskInterfaceTableTest, RunIsTheOnlyVirtualOperation)
{
    EXPECT_EQ(slotOf(&TaskInterface::run), 0u);
}

} // namespace
} // namespace renderengine
