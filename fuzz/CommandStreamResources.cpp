// The operations on resources: make one, change or destroy one that lives, is gone, or never was.

#include "CommandStream.h"

#include "commands/CommandList.h"

#include <iterator>
#include <utility>

namespace renderengine::fuzz
{

namespace
{

uint8_t s_readback[4096];

} // namespace

void CommandStream::drawOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
    {
        std::shared_ptr<const GfxStateProperties> gfxState = m_records.gfxState();
        m_records.remember(m_context.createDraw(std::move(gfxState), m_records.shaderStateCore()));
        break;
    }
    case 1:
    {
        const DrawHandle draw = m_records.pick<DrawHandle>();
        std::shared_ptr<const GfxStateProperties> gfxState = m_records.gfxState();
        m_context.updateDraw(draw, std::move(gfxState), m_records.shaderStateCore());
        break;
    }
    default:
        m_context.destroyDraw(m_records.pick<DrawHandle>());
        break;
    }
}

void CommandStream::drawPropertiesOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createDrawProperties(m_records.drawProperties()));
        break;
    case 1:
    {
        const DrawPropertiesHandle handle = m_records.pick<DrawPropertiesHandle>();
        m_context.updateDrawProperties(handle, m_records.drawProperties());
        break;
    }
    default:
        m_context.destroyDrawProperties(m_records.pick<DrawPropertiesHandle>());
        break;
    }
}

void CommandStream::membersOfDraw()
{
    const DrawHandle draw = m_records.pick<DrawHandle>();
    switch (m_reader.below(4))
    {
    case 0:
        m_context.removeAllDrawProperties(draw);
        break;
    case 1:
        m_context.removeDrawProperties(draw, m_records.pick<DrawPropertiesHandle>());
        break;
    default:
        m_context.addDrawProperties(draw, m_records.pick<DrawPropertiesHandle>());
        break;
    }
}

void CommandStream::bufferOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createBuffer(m_records.buffer()));
        break;
    case 1:
    {
        const BufferHandle handle = m_records.pick<BufferHandle>();
        m_context.updateBuffer(handle, m_records.buffer());
        break;
    }
    default:
        m_context.destroyBuffer(m_records.pick<BufferHandle>());
        break;
    }
}

void CommandStream::bufferMemoryOperation()
{
    const BufferHandle handle = m_records.pick<BufferHandle>();
    switch (m_reader.below(4))
    {
    case 0:
        m_context.resizeBuffer(handle, m_records.bufferSize());
        break;
    case 1:
    {
        const uint64_t offset = m_reader.wide();
        const uint64_t length = m_reader.wide();
        m_context.mapBuffer(handle, offset, length, m_reader.number());
        break;
    }
    case 2:
        m_context.unmapBuffer(handle);
        break;
    default:
    {
        const BufferHandle destination = m_records.pick<BufferHandle>();
        const uint64_t sourceOffset = m_reader.wide();
        const uint64_t destinationOffset = m_reader.wide();
        m_context.copyBuffer(handle, destination, sourceOffset, destinationOffset, m_reader.wide());
        break;
    }
    }
}

void CommandStream::vertexBufferOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createVertexBuffer(m_records.vertexBuffer()));
        break;
    case 1:
    {
        const VertexBufferHandle handle = m_records.pick<VertexBufferHandle>();
        m_context.updateVertexBuffer(handle, m_records.vertexBuffer());
        break;
    }
    default:
        m_context.destroyVertexBuffer(m_records.pick<VertexBufferHandle>());
        break;
    }
}

void CommandStream::indexBufferOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createIndexBuffer(m_records.indexBuffer()));
        break;
    case 1:
    {
        const IndexBufferHandle handle = m_records.pick<IndexBufferHandle>();
        m_context.updateIndexBuffer(handle, m_records.indexBuffer());
        break;
    }
    default:
        m_context.destroyIndexBuffer(m_records.pick<IndexBufferHandle>());
        break;
    }
}

void CommandStream::shaderBufferOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createShaderBuffer(m_records.shaderBuffer()));
        break;
    case 1:
    {
        const ShaderBufferHandle handle = m_records.pick<ShaderBufferHandle>();
        m_context.updateShaderBuffer(handle, m_records.shaderBuffer());
        break;
    }
    default:
        m_context.destroyShaderBuffer(m_records.pick<ShaderBufferHandle>());
        break;
    }
}

void CommandStream::textureImageOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createTextureImage(m_records.textureImage()));
        break;
    case 1:
    {
        const TextureImageHandle handle = m_records.pick<TextureImageHandle>();
        m_context.updateTextureImage(handle, m_records.textureImage());
        break;
    }
    default:
        m_context.destroyTextureImage(m_records.pick<TextureImageHandle>());
        break;
    }
}

void CommandStream::samplerOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createSampler(m_records.sampler()));
        break;
    case 1:
    {
        const SamplerHandle handle = m_records.pick<SamplerHandle>();
        m_context.updateSampler(handle, m_records.sampler());
        break;
    }
    default:
        m_context.destroySampler(m_records.pick<SamplerHandle>());
        break;
    }
}

void CommandStream::textureOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createTexture(m_records.texture()));
        break;
    case 1:
    {
        const TextureHandle handle = m_records.pick<TextureHandle>();
        m_context.updateTexture(handle, m_records.texture());
        break;
    }
    default:
        m_context.destroyTexture(m_records.pick<TextureHandle>());
        break;
    }
}

void CommandStream::texturePixelsOperation()
{
    const TextureHandle handle = m_records.pick<TextureHandle>();
    switch (m_reader.below(3))
    {
    case 0:
    {
        const uint32_t width = m_records.textureSize();
        const uint32_t height = m_records.textureSize();
        m_context.resizeTexture(handle, width, height, m_records.textureSize());
        break;
    }
    case 1:
        m_context.updateTextureBatchData(handle, m_records.textureBatch());
        break;
    default:
        if (m_frameMayWait)
        {
            m_context.execute(true);
            m_frameMayWait = false;
        }
        m_context.readbackTexture(handle, s_readback, m_reader.number() % (sizeof(s_readback) + 1));
        break;
    }
}

void CommandStream::renderTargetOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createRenderTarget(m_records.renderTarget()));
        break;
    case 1:
    {
        const RenderTargetHandle handle = m_records.pick<RenderTargetHandle>();
        m_context.updateRenderTarget(handle, m_records.renderTarget());
        break;
    }
    default:
        m_context.destroyRenderTarget(m_records.pick<RenderTargetHandle>());
        break;
    }
}

void CommandStream::viewportOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createViewport(m_records.viewport()));
        break;
    case 1:
    {
        const ViewportHandle handle = m_records.pick<ViewportHandle>();
        m_context.updateViewport(handle, m_records.viewport());
        break;
    }
    default:
        m_context.destroyViewport(m_records.pick<ViewportHandle>());
        break;
    }
}

void CommandStream::shaderObjectOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createShaderObject(m_records.shaderObject()));
        break;
    case 1:
        if (!m_frameMayWait)
        {
            m_context.getShaderObjectLog(m_records.pick<ShaderObjectHandle>());
        }
        break;
    default:
        m_context.destroyShaderObject(m_records.pick<ShaderObjectHandle>());
        break;
    }
}

void CommandStream::shaderProgramOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createShaderProgram(m_records.shaderProgram()));
        break;
    case 1:
        if (!m_frameMayWait)
        {
            m_context.getShaderProgramLog(m_records.pick<ShaderProgramHandle>());
        }
        break;
    default:
        m_context.destroyShaderProgram(m_records.pick<ShaderProgramHandle>());
        break;
    }
}

template <class Properties> void CommandStream::createParameter()
{
    Properties properties;
    m_records.fill(properties);
    m_records.remember(m_context.createShaderParameter(properties));
}

template <class Properties> void CommandStream::updateParameter()
{
    const ShaderParameterHandle handle = m_records.pick<ShaderParameterHandle>();
    Properties properties;
    m_records.fill(properties);
    m_context.updateShaderParameter(handle, properties);
}

template <class Properties> void CommandStream::recordParameterOf()
{
    const ShaderParameterHandle handle = m_records.pick<ShaderParameterHandle>();
    Properties properties;
    m_records.fill(properties);
    pickRenderCache().updateShaderParameter(handle, properties);
}

void CommandStream::shaderParameterOperation()
{
#define RENDERENGINE_FUZZ_CREATE(PROPERTIES) &CommandStream::createParameter<PROPERTIES>,
#define RENDERENGINE_FUZZ_UPDATE(PROPERTIES) &CommandStream::updateParameter<PROPERTIES>,
    static constexpr Operation CREATES[] = {RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_FUZZ_CREATE)};
    static constexpr Operation UPDATES[] = {RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_FUZZ_UPDATE)};
#undef RENDERENGINE_FUZZ_UPDATE
#undef RENDERENGINE_FUZZ_CREATE
    const uint32_t record = m_reader.below(static_cast<uint32_t>(std::size(CREATES)));
    switch (m_reader.below(3))
    {
    case 0:
        (this->*CREATES[record])();
        break;
    case 1:
        (this->*UPDATES[record])();
        break;
    default:
        m_context.destroyShaderParameter(m_records.pick<ShaderParameterHandle>());
        break;
    }
}

void CommandStream::recordParameter()
{
#define RENDERENGINE_FUZZ_RECORD(PROPERTIES) &CommandStream::recordParameterOf<PROPERTIES>,
    static constexpr Operation RECORDS[] = {RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_FUZZ_RECORD)};
#undef RENDERENGINE_FUZZ_RECORD
    (this->*RECORDS[m_reader.below(static_cast<uint32_t>(std::size(RECORDS)))])();
}

void CommandStream::queryOperation()
{
    switch (m_reader.below(3))
    {
    case 0:
        m_records.remember(m_context.createQuery(m_reader.number()));
        break;
    case 1:
        if (!m_frameMayWait)
        {
            m_context.getQueryResult(m_records.pick<QueryHandle>());
        }
        break;
    default:
        m_context.destroyQuery(m_records.pick<QueryHandle>());
        break;
    }
}

} // namespace renderengine::fuzz
