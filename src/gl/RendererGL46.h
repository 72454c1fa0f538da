#pragma once

#include "gl/RendererGL41.h"

#include <cstddef>
#include <cstdint>

namespace renderengine
{

/// The renderer for OpenGL 4.3 and above. It differs from `RendererGL41` in two things:
///
/// - Texture images are bound to image units.
/// - The shader buffers at positions 1 and 2 of a draw's members, transforms and materials, are gathered into one
///   merged buffer each, with an indirection per member, so that a merged batch shows each member with its own. Where
///   uniform buffers hold them, a draw is split into batches that fit into one uniform block.
class RendererGL46 : public RendererGL41
{
public:
    explicit RendererGL46(bool debug);

    using RendererGL41::execute;

    /// Also asks GL how large a uniform block may be, and for the vendor that needs storage buffers instead.
    void begin() override;

protected:
    /// Also binds the texture images.
    void setupShaderState(const ShaderStateCoreProperties& shaderState, bool programmable) override;

    /// Also binds the batch's indirect and merged buffers.
    GLuint bindDrawShaderBuffers(const Batch& batch, const ShaderProgramGL& program, GLuint firstBinding) override;

    /// Gathers the transform and material buffers of the batch's members.
    void mergeShaderBuffers(Batch& batch, bool needRebuild) override;

    /// Numbers the distinct transform and material buffers of the draw, in member order.
    void prepareMergeMaps(DrawGL& draw) override;

    /// Splits the draw into batches that fit into uniform blocks. Greedy and in order.
    void buildBatches(DrawGL& draw) override;

private:
    void bindTextureImages(const std::vector<TextureImageHandle>& images, const ShaderProgramGL& program);
    bool isAnyImageUnbound(const std::vector<TextureImageHandle>& images) const;
    TextureImageGL* findImage(const TextureImageHandle& handle) const;

    ShaderBufferHandle getSlotBuffer(const DrawPropertiesHandle& member, size_t slot) const;
    uint64_t getSlotBufferSize(const DrawPropertiesHandle& member, size_t slot) const;
    bool computeLimits(const DrawGL& draw);
    bool fitsOneBatch(const DrawGL& draw) const;
    bool isFull(const Batch& batch) const;
    void splitIntoBatches(DrawGL& draw);

    void releaseMergedSlot(Batch& batch, size_t slot);
    void mergeSlot(Batch& batch, size_t slot);
    void createIndirectBuffer(Batch& batch, size_t slot, const std::string& sourceName);
    void createMergedBuffer(Batch& batch, size_t slot, const std::string& sourceName, uint64_t blockSize);
    ShaderBufferHandle createMergeBuffer(Batch& batch, uint8_t kind, uint64_t size, const void* data, std::string name);

    bool m_shaderBufferMerging;
    bool m_mergingUsesUBO;             ///< else storage buffers, which have no limit that matters here
    int32_t m_maxDrawsPerBatch = -1;   ///< computed by the first draw that needs it, for good
    int32_t m_maxMergedEntries = -1;   ///< likewise
    int32_t m_maxUniformBlockSize = 0; ///< bytes
    uint64_t m_linkStampOfImages = 0;  ///< of the program whose uniforms name the units of the current images
};

} // namespace renderengine
