#pragma once

#include "gl/CubeData.h"
#include "gl/RendererDriver.h"

#include <renderengine/RenderCache.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace bench
{

enum class RendererKind
{
    GL41,
    GL46
};

/// The cubes as resources of a renderer without context object and thread, and the frame that draws them: a clear and
/// the draws, recorded once. All members need the table, and on a device the context, that the constructor had.
class EngineScene : private renderengine::RendererDriver
{
public:
    /// `indexCount` indices of each cube are drawn. On a device the real shaders are compiled; else the program is one
    /// that knows their names. With `merging` all cubes are members of one draw, else each is a draw of its own.
    EngineScene(RendererKind kind, const CubeData& cubes, uint32_t indexCount, bool merging, bool device);
    ~EngineScene();

    /// One frame as a context runs it, without a wait at its end.
    void drawFrame();

    /// Drops the draws and makes new ones of the same members, so that the next frame is a first frame.
    void renewDraws();

    /// Gives one cube other vertices.
    void changeOne();
    /// Updates one vertex buffer, not the data below it, so that unmerged draws read their views again.
    void changeOneView();

    /// The picture of the last frame, 4 bytes a pixel. Needs a device.
    std::vector<uint8_t> readPicture();

private:
    void createTarget();
    void createProgram(bool device);
    void createMembers();
    void createDraws();
    void destroyDraws();
    renderengine::ShaderBufferHandle makeBlock(const char* name, const void* data, uint64_t size);
    renderengine::VertexBufferHandle makeAttribute(const char* name, const std::vector<float>& values);

    const CubeData& m_cubes;
    const uint32_t m_indexCount;
    const bool m_merging;
    renderengine::Scene m_scene;
    renderengine::TextureHandle m_color;
    renderengine::BufferHandle m_changing;
    renderengine::VertexBufferHandle m_changingView;
    renderengine::VertexBufferProperties m_changingRecord;
    std::vector<renderengine::DrawPropertiesHandle> m_members;
    std::vector<renderengine::DrawHandle> m_draws;
    std::shared_ptr<renderengine::RenderCache> m_frame;
};

} // namespace bench
