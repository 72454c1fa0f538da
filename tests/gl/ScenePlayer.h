#pragma once

#include "RandomScene.h"

#include "commands/CommandList.h"
#include "gl/RendererGL41.h"

#include <memory>
#include <utility>
#include <vector>

namespace renderengine
{

/// Shows a random scene with a renderer, merged and range by range. The renderer must outlive the player, which
/// destroys all that it made.
class ScenePlayer
{
public:
    /// Makes what the scene needs. The state is that of each draw, but for what the scene says itself. Transforms and
    /// materials are blocks of that kind (see ShaderBufferProperties).
    ScenePlayer(RendererGL41& renderer, const RandomScene& scene, const ShaderStateCoreProperties& shaderState,
                uint32_t blockKind = 1);
    ~ScenePlayer();
    ScenePlayer(const ScenePlayer&) = delete;
    ScenePlayer& operator=(const ScenePlayer&) = delete;

    /// Draws each draw of the scene as one draw of all its members. The draws are made at the first call and kept.
    void drawMerged();
    void drawMerged(size_t draw);

    /// The draws of drawMerged(), in the order of the scene's.
    const std::vector<DrawHandle>& getMergedDraws() const { return m_mergedDraws; }

    /// Draws each range of each member by a draw of its own, which the renderer cannot merge with anything.
    void drawRangeByRange();
    void drawRangeByRange(size_t draw);

    /// Gives a vertex buffer of the scene other content.
    void changeVertices(size_t vertexBuffer, const std::vector<uint8_t>& data);

    /// Gives a transform of the scene another value.
    void changeTransform(size_t transform, const RandomScene::Block& block);

private:
    template <class Command, class... Arguments> void run(Arguments&&... arguments)
    {
        Command command;
        command.set(std::forward<Arguments>(arguments)...);
        m_renderer.execute(command);
    }

    BufferHandle makeBuffer(const void* data, size_t size);
    void updateBuffer(const BufferHandle& handle, const void* data, size_t size);
    ShaderBufferHandle makeBlock(const char* name, const RandomScene::Block& block, uint32_t kind,
                                 BufferHandle& buffer);
    void makeVertexBuffers();
    void makeIndexBuffers();
    DrawProperties makeRecord(const RandomScene::Member& member) const;
    DrawHandle makeDraw(const RandomScene::Draw& draw);
    void addMember(const DrawHandle& draw, const DrawProperties& record, std::vector<DrawPropertiesHandle>& members);
    void makeMergedDraws();

    RendererGL41& m_renderer;
    const RandomScene& m_scene;
    ShaderStateCoreProperties m_shaderState;
    std::vector<BufferHandle> m_buffers;
    std::vector<BufferHandle> m_vertexData;
    std::vector<BufferHandle> m_transformData;
    std::vector<VertexBufferHandle> m_vertexBuffers;
    std::vector<IndexBufferHandle> m_indexBuffers;
    std::vector<ShaderBufferHandle> m_transforms;
    std::vector<ShaderBufferHandle> m_materials;
    std::vector<DrawHandle> m_mergedDraws;
    std::vector<DrawPropertiesHandle> m_members;
};

} // namespace renderengine
