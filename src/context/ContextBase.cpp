#include "context/ContextBase.h"

#include "commands/TaskCommands.h"
#include "context/ContextFactory.h"
#include "renderer/Assertion.h"
#include "renderer/RenderLoop.h"
#include "renderer/RendererBase.h"
#include "renderer/RendererLog.h"
#include "renderer/RendererNull.h"

#include <kavelor/SbString.h>
#include <kavelor/SbThread.h>
#include <kavelor/SoPreferences.h>

#include <spdlog/spdlog.h>

#include <algorithm>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace renderengine
{

namespace
{

constexpr const char* PATH = "src/context/ContextBase";

void nameRenderThread()
{
    std::ostringstream name;
    name.imbue(std::locale::classic()); // a host's locale may group digits
    name << "KVR_RenderThread_" << SbThread::getCurrentId();
    SbThread::setCurrentName(name.str());
}

} // namespace

ContextBase::ContextBase(uint8_t flags, uint16_t count)
    : m_multithread((flags & ContextMultithread) != 0), m_shareContext((flags & ContextShare) != 0),
      m_debug((flags & ContextDebug) != 0), m_count(std::max<uint16_t>(count, 1)), m_renderer(nullptr)
{
}

ContextBase::~ContextBase()
{
    delete m_renderer;
}

bool ContextBase::canPresent()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->canPresent();
}

PresentFrame* ContextBase::getPresentFrame()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getPresentFrame();
}

bool ContextBase::present()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->present();
}

ReversePresentFrame* ContextBase::getReversePresentFrame()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getReversePresentFrame();
}

void ContextBase::submit(const std::shared_ptr<RenderCache>& cache)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->submit(cache);
}

void ContextBase::execute(bool wait)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    // Held to the end: the render thread may drop the frame from the queue before this returns.
    const std::shared_ptr<Frame> frame = m_renderer->endFrame();
    try
    {
        runFrame(wait);
        m_renderer->finishFrame();
    }
    catch (const std::runtime_error& error)
    {
        spdlog::error("RenderEngine exception: {}", error.what());
    }
}

void ContextBase::discardFrame()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    const std::shared_ptr<Frame> frame = m_renderer->endFrame();
    m_renderer->discardFrame();
}

void ContextBase::presentFrameSync()
{
    m_renderer->presentFrameSync();
}

void ContextBase::executeResourceCommands()
{
    if (isRenderThreaded())
    {
        m_renderLoop->pushEvent(RenderLoop::ResourceCommands, true);
    }
    else
    {
        makeCurrent();
        m_renderer->executeResourceCommands();
        doneCurrent();
    }
}

void ContextBase::renderTask(const TaskProperties& task, std::shared_ptr<const GfxStateProperties> gfxState,
                             const ShaderStateProperties& shaderState, bool fixedFunctionState)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    CommandRenderTask command;
    command.set(task, std::move(gfxState), shaderState, fixedFunctionState);
    command.execute(*m_renderer);
}

void ContextBase::flush(const std::shared_ptr<RenderCache>& cache, bool execute)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->submitFlush(cache);
    if (!execute)
    {
        return;
    }
    m_renderer->endFrame();
    runFrame(true);
}

const FramebufferParameterEventArg* ContextBase::updatePresentEventArg()
{
    return m_renderer->updatePresentEventArg();
}

void ContextBase::setSize(uint32_t width, uint32_t height)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->setSize(width, height);
}

RenderTargetHandle ContextBase::getPresentRenderTarget()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getPresentRenderTarget();
}

RenderTargetHandle ContextBase::getReversePresentRenderTarget()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getReversePresentRenderTarget();
}

void ContextBase::setPresentRenderTarget(const RenderTargetHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->setPresentRenderTarget(handle);
}

void ContextBase::setReversePresentRenderTarget(const RenderTargetHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->setReversePresentRenderTarget(handle);
}

TextureHandle ContextBase::getPresentColorTexture()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getPresentColorTexture();
}

void ContextBase::setPresentColorTexture(const TextureHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->setPresentColorTexture(handle);
}

TextureHandle ContextBase::getPresentDepthTexture()
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    return m_renderer->getPresentDepthTexture();
}

void ContextBase::setPresentDepthTexture(const TextureHandle& handle)
{
    RENDERENGINE_ASSERT(m_renderer, PATH);
    m_renderer->setPresentDepthTexture(handle);
}

RendererBase* ContextBase::createDebugRenderer() const
{
    const SbString type = SoPreferences::getString("KVR_RENDERENGINE_RENDERER", "GL").upper();
    if (type == "LOG")
    {
        return new RendererLog(m_debug);
    }
    if (type == "NULL")
    {
        return new RendererNull(m_debug);
    }
    return nullptr;
}

void ContextBase::startRenderThread()
{
    m_renderLoop = std::make_unique<RenderLoop>(*this);
    try
    {
        m_renderThread = std::make_unique<std::thread>(
            [&loop = *m_renderLoop]
            {
                nameRenderThread();
                loop();
            });
    }
    catch (...)
    {
        // A loop that nobody runs would make every operation that waits, and the destructor, wait for ever.
        m_renderLoop.reset();
        throw;
    }
}

void ContextBase::stopRenderThread()
{
    if (!m_renderLoop)
    {
        return;
    }
    m_renderLoop->stop();
    m_renderThread->join();
}

void ContextBase::runFrame(bool wait)
{
    if (isRenderThreaded())
    {
        m_renderLoop->pushEvent(RenderLoop::Frame, wait);
    }
    else
    {
        makeCurrent();
        m_renderer->execute();
        doneCurrent();
    }
}

} // namespace renderengine
