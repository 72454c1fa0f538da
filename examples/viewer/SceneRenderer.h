#pragma once

#include "Camera.h"
#include "Model.h"
#include "Shaders.h"

#include <renderengine/Handle.h>
#include <renderengine/OverallAttribute.h>
#include <renderengine/RenderCache.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace renderengine
{
class ContextInterface;
struct DrawProperties;
struct GfxStateProperties;
struct ShaderStateCoreProperties;
} // namespace renderengine

namespace viewer
{

/// Draws a model into a multisample target and resolves it into a texture that can be read back.
///
/// Each instance of a mesh has draw properties of its own, with its transform and its material. Instances of the same
/// state and texture are one draw, which the engine merges, or each is a draw of its own. The order in which they are
/// drawn is the same. The commands of a frame are recorded once, by the constructor, and submitted again for each
/// frame.
class SceneRenderer
{
public:
    /// Creates all resources in the context, which must outlive this object and be initialised. Width and height are in
    /// pixels. Throws std::runtime_error when a shader does not compile or link. The model's images must stay valid
    /// until the first frame has been drawn. `merging` puts instances of the same state and texture into one draw.
    SceneRenderer(renderengine::ContextInterface& context, const Model& model, uint32_t width, uint32_t height,
                  bool merging);

    /// Submits the recorded frame, waits until it has run, and returns the time this took in milliseconds.
    double drawFrame();

    /// The picture of the last frame, top row first.
    Image readPicture();

    /// The number of draws recorded for a frame.
    std::size_t drawCount() const { return m_draws.size(); }

private:
    struct MeshResources;
    struct Group;
    struct Attributes;

    std::vector<Group> groupInstances(const Model& model) const;
    void createTargets();
    void createProgram(const Model& model, const std::vector<Group>& groups);
    void createTextures(const Model& model);
    void createMaterials(const Model& model);
    void createCamera(const Model& model);
    void createDraws(const Model& model, const std::vector<Group>& groups);
    renderengine::DrawPropertiesHandle createInstance(const Model& model, const Instance& instance,
                                                      const MeshResources& resources);
    MeshResources createMesh(const Mesh& mesh, const Attributes& attributes);
    int textureOf(const Material& material) const;
    renderengine::TextureHandle createTarget(uint32_t type, uint8_t samples, uint32_t format, uint32_t internalFormat);
    renderengine::BufferHandle createBuffer(const void* data, std::size_t size);
    renderengine::ShaderBufferHandle createBlock(const char* name, const void* data, std::size_t size);
    renderengine::VertexBufferHandle createAttribute(const char* name, const void* data, std::size_t size,
                                                     uint8_t components);
    std::shared_ptr<const renderengine::ShaderStateCoreProperties> shaderStateFor(int image);
    void recordFrame();

    renderengine::ContextInterface& m_context;
    const uint32_t m_width;
    const uint32_t m_height;
    const bool m_merging;
    const MemberData m_memberData;
    Camera m_camera;

    renderengine::TextureHandle m_resolvedColor;
    renderengine::RenderTargetHandle m_multisampleTarget;
    renderengine::RenderTargetHandle m_resolveTarget;
    renderengine::ViewportHandle m_viewport;
    renderengine::ShaderProgramHandle m_program;
    renderengine::ShaderParameterHandle m_textureUnit;
    renderengine::SamplerHandle m_sampler;
    renderengine::ShaderBufferHandle m_cameraBlock;
    std::vector<renderengine::TextureHandle> m_textures;
    /// One entry a material in one of the two, depending on where the shader looks for it.
    std::vector<renderengine::ShaderBufferHandle> m_materialBlocks;
    std::vector<std::vector<renderengine::OverallAttribute>> m_materialAttributes;
    std::vector<std::shared_ptr<const renderengine::ShaderStateCoreProperties>> m_shaderStates;
    std::vector<renderengine::DrawHandle> m_draws;

    std::shared_ptr<renderengine::RenderCache> m_setup;
    std::shared_ptr<renderengine::RenderCache> m_frame;
    std::shared_ptr<renderengine::RenderCache> m_readback;
};

} // namespace viewer
