#include "gl/RendererGL41.h"

#include "gl/DebugGroup.h"
#include "gl/DebugOutputGL.h"
#include "gl/RendererGL41Find.h"

#include <kavelor/SoGraphicalTestSingleton.h>
#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <array>

namespace renderengine
{

namespace
{

/// False on a thread without a current context, whose table does nothing.
bool hasCurrentTable()
{
    return glbinding::t_table != &glbinding::g_silentTable;
}

/// Rows come from GL from the bottom up; pictures have them from the top down.
void flipRows(std::vector<SbVec4ub>& pixels, size_t width, size_t height)
{
    for (size_t y = 0; y < height / 2; ++y)
    {
        const auto row = pixels.begin() + static_cast<std::ptrdiff_t>(y * width);
        const auto mirrored = pixels.begin() + static_cast<std::ptrdiff_t>((height - 1 - y) * width);
        std::swap_ranges(row, row + static_cast<std::ptrdiff_t>(width), mirrored);
    }
}

} // namespace

RendererGL41::RendererGL41(bool debug)
    : RendererBase(debug), m_differentialState(SoPreferences::getBool("KVR_RENDERENGINE_DIFFERENTIAL_STATE", true)),
      m_framebufferEventArg(std::make_unique<FramebufferParameterGLEventArg>()),
      m_presentFrame(std::make_unique<PresentFrameGL_GL>()),
      m_reversePresentFrame(std::make_unique<ReversePresentFrameGL_GL>()),
      m_explainMerging(SoPreferences::getBool("KVR_RENDERENGINE_EXPLAIN_MERGING", false)),
      m_useFence(SoPreferences::getInt("KVR_USE_FENCE", 1) == 1), m_frameFence(1), m_presentFence(1),
      m_maxShaderCompilerThreads(
          static_cast<uint32_t>(SoPreferences::getInt("KVR_RENDERENGINE_MAX_SHADER_COMPILER_THREADS", 0)))
{
}

RendererGL41::~RendererGL41() = default;

void RendererGL41::execute()
{
    glbinding::refreshCurrentTable();
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::execute RenderLoop");
    RendererBase::execute();
}

void RendererGL41::executeResourceCommands()
{
    glbinding::refreshCurrentTable();
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY,
                             "renderengine::RendererGL41::executeResourceCommands CreateResource");
    RendererBase::executeResourceCommands();
}

void RendererGL41::begin()
{
    glbinding::refreshCurrentTable();
    static const bool s_useGLCore = SoPreferences::getBool("KVR_RENDERENGINE_USE_GLCORE", false);
    static const bool s_enablePointSprite = SoPreferences::getBool("KVR_RENDERENGINE_ENABLE_POINT_SPRITE", true);
    if (!s_useGLCore && s_enablePointSprite)
    {
        glEnable(GL_POINT_SPRITE);
    }
    // At every frame: a host that shares the context may have switched them off.
    glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
    glEnable(GL_PROGRAM_POINT_SIZE);
    if (m_vao == 0)
    {
        glGenVertexArrays(1, &m_vao);
        glBindVertexArray(m_vao);
    }
    if (m_useFence && m_presentFence.holdsSync())
    {
        m_presentFence.wait();
    }
    else
    {
        glFinish();
    }
    if (m_maxShaderCompilerThreads != 0)
    {
        glMaxShaderCompilerThreadsARB(m_maxShaderCompilerThreads);
    }
}

void RendererGL41::finish()
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::finish ");
    if (m_useFence)
    {
        m_frameFence.insert();
    }
    else
    {
        glFinish();
    }
    captureFrame(m_frameNumber);
    ++m_frameNumber;
}

void RendererGL41::presentFrameSync()
{
    glbinding::refreshCurrentTable();
    if (!hasCurrentTable())
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::presentFrameSync ");
    if (m_useFence)
    {
        m_presentFence.insert();
    }
    else
    {
        glFinish();
    }
}

void RendererGL41::finishFrame()
{
    glbinding::refreshCurrentTable();
    if (!hasCurrentTable())
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL41::finishFrame ");
    if (m_useFence)
    {
        m_frameFence.wait();
    }
    else
    {
        glFinish();
    }
}

void RendererGL41::init()
{
    glbinding::refreshCurrentTable();
    RendererBase::init();
    if (m_debug)
    {
        glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
        glDebugMessageCallback(debugOutputCallback, nullptr);
    }
}

void RendererGL41::destroy()
{
    glbinding::refreshCurrentTable();
    glDeleteVertexArrays(1, &m_vao);
    m_vao = 0;
    // Views before their buffers.
    m_tables.vertexBuffers.destroyAll();
    m_tables.indexBuffers.destroyAll();
    m_tables.shaderBuffers.destroyAll();
    m_tables.buffers.destroyAll();
    m_tables.samplers.destroyAll();
    m_tables.textures.destroyAll();
    m_tables.renderTargets.destroyAll();
    m_tables.shaderObjects.destroyAll();
    m_tables.shaderPrograms.destroyAll();
    m_tables.queries.destroyAll();
    m_sequenceBuffer = BufferHandle();
    m_sequenceIndexBuffer = IndexBufferHandle();
    m_sequenceCount = 0;
    m_presentFrame.reset();
    m_frameFence.release();
    m_presentFence.release();
    m_stateUnknown = true;
}

const FramebufferParameterEventArg* RendererGL41::updatePresentEventArg()
{
    const TextureGL* color = find(m_tables.textures, m_presentColorTexture);
    const TextureGL* depth = find(m_tables.textures, m_presentDepthTexture);
    m_framebufferEventArg->setColorTexId(color != nullptr ? color->getId() : 0);
    m_framebufferEventArg->setDepthTexId(depth != nullptr ? depth->getId() : 0);
    m_framebufferEventArg->setSize(SbVec2i32(static_cast<int32_t>(m_width), static_cast<int32_t>(m_height)));
    return m_framebufferEventArg.get();
}

void RendererGL41::captureFrame(size_t frame)
{
    SoGraphicalTestSingleton& graphicalTest = SoGraphicalTestSingleton::getInstance();
    if (!graphicalTest.isFrameNeeded(frame))
    {
        return;
    }
    const size_t width = m_width;
    const size_t height = m_height;
    if (width * height == 0)
    {
        return;
    }
    bindRenderTarget(m_presentRenderTarget);
    m_currentRenderTarget = m_presentRenderTarget;
    std::vector<SbVec4ub> pixels(width * height);
    glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels.data());
    flipRows(pixels, width, height);
    graphicalTest.writeFrame(pixels.data(), SbVec2i32(static_cast<int32_t>(width), static_cast<int32_t>(height)),
                             frame);
}

void RendererGL41::drainDebugLog() const
{
    constexpr GLuint messageCount = 10;
    constexpr GLsizei textSize = 2048;
    std::array<GLenum, messageCount> sources{};
    std::array<GLenum, messageCount> types{};
    std::array<GLuint, messageCount> ids{};
    std::array<GLenum, messageCount> severities{};
    std::array<GLsizei, messageCount> lengths{};
    std::array<GLchar, textSize> texts{};
    const GLuint found = glGetDebugMessageLogARB(messageCount, textSize, sources.data(), types.data(), ids.data(),
                                                 severities.data(), lengths.data(), texts.data());
    const GLchar* text = texts.data();
    for (GLuint i = 0; i < std::min(found, messageCount); ++i)
    {
        spdlog::error("[RendererGL][debug] {}", text);
        text += lengths[i];
    }
}

// Markers

void RendererGL41::execute(CommandPushDebugMarker& command)
{
    glPushDebugGroup(GL_DEBUG_SOURCE_THIRD_PARTY, 1, -1, command.text.c_str());
}

void RendererGL41::execute(CommandPopDebugMarker& /*command*/)
{
    glPopDebugGroup();
}

// Handles

DrawHandle RendererGL41::generateDrawHandle()
{
    return createHandle(m_tables.draws);
}

DrawPropertiesHandle RendererGL41::generateDrawPropertiesHandle()
{
    return createHandle(m_tables.drawProperties);
}

BufferHandle RendererGL41::generateBufferHandle()
{
    return createHandle(m_tables.buffers);
}

VertexBufferHandle RendererGL41::generateVertexBufferHandle()
{
    return createHandle(m_tables.vertexBuffers);
}

IndexBufferHandle RendererGL41::generateIndexBufferHandle()
{
    return createHandle(m_tables.indexBuffers);
}

ShaderBufferHandle RendererGL41::generateShaderBufferHandle()
{
    return createHandle(m_tables.shaderBuffers);
}

TextureImageHandle RendererGL41::generateTextureImageHandle()
{
    return createHandle(m_tables.textureImages);
}

SamplerHandle RendererGL41::generateSamplerHandle()
{
    return createHandle(m_tables.samplers);
}

TextureHandle RendererGL41::generateTextureHandle()
{
    return createHandle(m_tables.textures);
}

RenderTargetHandle RendererGL41::generateRenderTargetHandle()
{
    return createHandle(m_tables.renderTargets);
}

ViewportHandle RendererGL41::generateViewportHandle()
{
    return createHandle(m_tables.viewports);
}

ShaderObjectHandle RendererGL41::generateShaderObjectHandle()
{
    return createHandle(m_tables.shaderObjects);
}

ShaderProgramHandle RendererGL41::generateShaderProgramHandle()
{
    return createHandle(m_tables.shaderPrograms);
}

ShaderParameterHandle RendererGL41::generateShaderParameterHandle()
{
    return createHandle(m_tables.shaderParameters);
}

QueryHandle RendererGL41::generateQueryHandle()
{
    return createHandle(m_tables.queries);
}

} // namespace renderengine
