#include "ScenePlayer.h"

#include <renderengine/BufferProperties.h>

namespace renderengine
{

ScenePlayer::ScenePlayer(RendererGL41& renderer, const RandomScene& scene, const ShaderStateCoreProperties& shaderState,
                         uint32_t blockKind)
    : m_renderer(renderer), m_scene(scene), m_shaderState(shaderState)
{
    makeVertexBuffers();
    makeIndexBuffers();
    for (const RandomScene::Block& block : scene.transforms)
    {
        BufferHandle buffer;
        m_transforms.push_back(makeBlock("Transform", block, blockKind, buffer));
        m_transformData.push_back(buffer);
    }
    for (const RandomScene::Block& block : scene.materials)
    {
        BufferHandle buffer;
        m_materials.push_back(makeBlock("Material", block, blockKind, buffer));
    }
}

ScenePlayer::~ScenePlayer()
{
    for (const DrawHandle& handle : m_mergedDraws)
    {
        run<CommandDestroyDraw>(handle);
    }
    for (const DrawPropertiesHandle& handle : m_members)
    {
        run<CommandDestroyDrawProperties>(handle);
    }
    for (const VertexBufferHandle& handle : m_vertexBuffers)
    {
        run<CommandDestroyVertexBuffer>(handle);
    }
    for (const IndexBufferHandle& handle : m_indexBuffers)
    {
        run<CommandDestroyIndexBuffer>(handle);
    }
    for (const std::vector<ShaderBufferHandle>* blocks : {&m_transforms, &m_materials})
    {
        for (const ShaderBufferHandle& handle : *blocks)
        {
            run<CommandDestroyShaderBuffer>(handle);
        }
    }
    for (const BufferHandle& handle : m_buffers)
    {
        run<CommandDestroyBuffer>(handle);
    }
}

BufferHandle ScenePlayer::makeBuffer(const void* data, size_t size)
{
    BufferProperties properties;
    properties.size = size;
    properties.data = data;
    const BufferHandle handle = m_renderer.generateBufferHandle();
    run<CommandCreateBuffer>(handle, properties);
    m_buffers.push_back(handle);
    return handle;
}

void ScenePlayer::updateBuffer(const BufferHandle& handle, const void* data, size_t size)
{
    BufferProperties properties;
    properties.size = size;
    properties.data = data;
    run<CommandUpdateBuffer>(handle, properties);
}

ShaderBufferHandle ScenePlayer::makeBlock(const char* name, const RandomScene::Block& block, uint32_t kind,
                                          BufferHandle& buffer)
{
    buffer = makeBuffer(block.data(), sizeof(block));
    ShaderBufferProperties properties;
    properties.kind = kind;
    properties.buffer = buffer;
    properties.name = name;
    const ShaderBufferHandle handle = m_renderer.generateShaderBufferHandle();
    run<CommandCreateShaderBuffer>(handle, properties);
    return handle;
}

void ScenePlayer::makeVertexBuffers()
{
    for (const RandomScene::VertexBuffer& source : m_scene.vertexBuffers)
    {
        VertexBufferProperties properties;
        properties.dataType = source.dataType;
        properties.normalized = source.normalized;
        properties.componentCount = source.componentCount;
        properties.stride = source.stride;
        properties.divisor = source.divisor;
        properties.name = source.name;
        properties.buffer = makeBuffer(source.data.data(), source.data.size());
        m_vertexData.push_back(properties.buffer);
        m_vertexBuffers.push_back(m_renderer.generateVertexBufferHandle());
        run<CommandCreateVertexBuffer>(m_vertexBuffers.back(), properties);
    }
}

void ScenePlayer::makeIndexBuffers()
{
    for (const RandomScene::IndexBuffer& source : m_scene.indexBuffers)
    {
        IndexBufferProperties properties;
        properties.dataType = source.dataType;
        properties.buffer = makeBuffer(source.data.data(), source.data.size());
        m_indexBuffers.push_back(m_renderer.generateIndexBufferHandle());
        run<CommandCreateIndexBuffer>(m_indexBuffers.back(), properties);
    }
}

DrawProperties ScenePlayer::makeRecord(const RandomScene::Member& member) const
{
    DrawProperties record;
    for (const size_t vertexBuffer : member.vertexBuffers)
    {
        record.vertexBuffers.push_back(m_vertexBuffers[vertexBuffer]);
    }
    record.overallAttributes = member.overallAttributes;
    record.shaderBuffers = {ShaderBufferHandle(), m_transforms[member.transform], m_materials[member.material]};
    for (const RandomScene::Range& range : member.ranges)
    {
        record.ranges.push_back(range.properties);
        if (range.indexBuffer)
        {
            record.ranges.back().indexBuffer = m_indexBuffers[*range.indexBuffer];
        }
    }
    return record;
}

DrawHandle ScenePlayer::makeDraw(const RandomScene::Draw& draw)
{
    constexpr uint8_t maximumEquation = 4;
    auto gfxState = std::make_shared<GfxStateProperties>();
    gfxState->rasterizer.cullMode = 0;
    gfxState->rasterizer.pointSize = draw.pointSize;
    gfxState->depthStencil.depthTest = draw.depthTest;
    gfxState->depthStencil.depthWrite = draw.depthTest;
    if (draw.maximum)
    {
        ColorTargetProperties& target = gfxState->colorOutput.targets[0];
        target.blendEnable = 1;
        target.colorOp = maximumEquation;
        target.alphaOp = maximumEquation;
    }
    const DrawHandle handle = m_renderer.generateDrawHandle();
    run<CommandCreateDraw>(handle, gfxState, std::make_shared<const ShaderStateCoreProperties>(m_shaderState));
    return handle;
}

void ScenePlayer::addMember(const DrawHandle& draw, const DrawProperties& record,
                            std::vector<DrawPropertiesHandle>& members)
{
    const DrawPropertiesHandle handle = m_renderer.generateDrawPropertiesHandle();
    run<CommandCreateDrawProperties>(handle, record);
    run<CommandAddDrawProperties>(draw, handle);
    members.push_back(handle);
}

void ScenePlayer::makeMergedDraws()
{
    for (const RandomScene::Draw& draw : m_scene.draws)
    {
        m_mergedDraws.push_back(makeDraw(draw));
        for (const RandomScene::Member& member : draw.members)
        {
            addMember(m_mergedDraws.back(), makeRecord(member), m_members);
        }
    }
}

void ScenePlayer::drawMerged()
{
    for (size_t i = 0; i < m_scene.draws.size(); ++i)
    {
        drawMerged(i);
    }
}

void ScenePlayer::drawMerged(size_t draw)
{
    if (m_mergedDraws.empty())
    {
        makeMergedDraws();
    }
    run<CommandRender>(m_mergedDraws[draw]);
}

void ScenePlayer::drawRangeByRange()
{
    for (size_t i = 0; i < m_scene.draws.size(); ++i)
    {
        drawRangeByRange(i);
    }
}

void ScenePlayer::drawRangeByRange(size_t draw)
{
    for (const RandomScene::Member& member : m_scene.draws[draw].members)
    {
        DrawProperties record = makeRecord(member);
        const std::vector<DrawRange> ranges = record.ranges;
        for (const DrawRange& range : ranges)
        {
            record.ranges = {range};
            const DrawHandle handle = makeDraw(m_scene.draws[draw]);
            std::vector<DrawPropertiesHandle> members;
            addMember(handle, record, members);
            run<CommandRender>(handle);
            run<CommandDestroyDraw>(handle);
            run<CommandDestroyDrawProperties>(members.front());
        }
    }
}

void ScenePlayer::changeVertices(size_t vertexBuffer, const std::vector<uint8_t>& data)
{
    updateBuffer(m_vertexData[vertexBuffer], data.data(), data.size());
}

void ScenePlayer::changeTransform(size_t transform, const RandomScene::Block& block)
{
    updateBuffer(m_transformData[transform], block.data(), sizeof(block));
}

} // namespace renderengine
