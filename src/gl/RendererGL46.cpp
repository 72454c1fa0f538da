#include "gl/RendererGL46.h"

#include "gl/DebugGroup.h"
#include "gl/RendererGL41Find.h"

#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace renderengine
{

namespace
{

constexpr size_t imageUnitCount = 8;
constexpr size_t slotCount = 2;
constexpr int32_t uniformEntrySize = 16; // of an array of integers in the uniform layout

// What BufferProperties::kind and ShaderBufferProperties::kind stand for.
constexpr uint8_t staticDraw = 0;
constexpr uint8_t staticCopy = 2;
constexpr uint32_t storageBlock = 0;
constexpr uint32_t uniformBlock = 1;

} // namespace

RendererGL46::RendererGL46(bool debug)
    : RendererGL41(debug), m_shaderBufferMerging(SoPreferences::getBool("KVR_ENABLE_SHADER_BUFFERS_MERGING", true)),
      m_mergingUsesUBO(m_shaderBufferMerging && SoPreferences::getBool("KVR_SHADER_BUFFERS_MERGING_USE_UBO", true))
{
}

void RendererGL46::begin()
{
    RendererGL41::begin();
    glGetIntegerv(GL_MAX_UNIFORM_BLOCK_SIZE, &m_maxUniformBlockSize);
    const auto* vendor = reinterpret_cast<const char*>(glGetString(GL_VENDOR));
    if (vendor != nullptr && std::strncmp(vendor, "ATI", 3) == 0)
    {
        m_mergingUsesUBO = false;
    }
}

// Texture images

void RendererGL46::setupShaderState(const ShaderStateCoreProperties& shaderState, bool programmable)
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "DebugMarkerPushPop::DebugMarkerPushPop ");
    bool changed = isShaderStateUnknown(shaderState);
    RendererGL41::setupShaderState(shaderState, programmable);
    const ShaderProgramGL* program = find(m_tables.shaderPrograms, shaderState.program);
    if (program == nullptr)
    {
        return;
    }
    // Linking again sets the units in the program back.
    changed = changed || shaderState.textureImages != m_currentShaderState.textureImages ||
              program->getLinkStamp() != m_linkStampOfImages || isAnyImageUnbound(shaderState.textureImages);
    if (changed)
    {
        bindTextureImages(shaderState.textureImages, *program);
        m_currentShaderState.textureImages = shaderState.textureImages;
        m_linkStampOfImages = program->getLinkStamp();
    }
}

TextureImageGL* RendererGL46::findImage(const TextureImageHandle& handle) const
{
    TextureImageGL* image = find(m_tables.textureImages, handle);
    return image != nullptr && image->getUnit() < imageUnitCount ? image : nullptr;
}

bool RendererGL46::isAnyImageUnbound(const std::vector<TextureImageHandle>& images) const
{
    return std::any_of(images.begin(), images.end(),
                       [this](const TextureImageHandle& handle)
                       {
                           const TextureImageGL* image = findImage(handle);
                           return image != nullptr && !image->isBound();
                       });
}

void RendererGL46::bindTextureImages(const std::vector<TextureImageHandle>& images, const ShaderProgramGL& program)
{
    std::array<TextureImageHandle, imageUnitCount> previousImages;
    for (const TextureImageHandle& handle : m_currentShaderState.textureImages)
    {
        if (const TextureImageGL* image = findImage(handle))
        {
            previousImages[image->getUnit()] = handle;
        }
    }
    for (const TextureImageHandle& handle : images)
    {
        TextureImageGL* image = findImage(handle);
        if (image == nullptr)
        {
            continue;
        }
        TextureImageHandle& previous = previousImages[image->getUnit()];
        if (previous != handle || !image->isBound())
        {
            image->bind(find(m_tables.textures, image->getProperties().texture));
        }
        image->applyUnit(program);
        previous = TextureImageHandle();
    }
    for (GLuint unit = 0; unit < imageUnitCount; ++unit)
    {
        if (previousImages[unit].isValid())
        {
            glBindImageTexture(unit, 0, 0, GL_FALSE, 0, GL_READ_ONLY, GL_R8);
        }
    }
}

// Batches

ShaderBufferHandle RendererGL46::getSlotBuffer(const DrawPropertiesHandle& member, size_t slot) const
{
    // Position 0 is the member's own business; transforms and materials follow.
    const DrawPropertiesGL* drawProperties = find(m_tables.drawProperties, member);
    if (drawProperties == nullptr || slot + 1 >= drawProperties->properties->shaderBuffers.size())
    {
        return ShaderBufferHandle();
    }
    return drawProperties->properties->shaderBuffers[slot + 1];
}

uint64_t RendererGL46::getSlotBufferSize(const DrawPropertiesHandle& member, size_t slot) const
{
    const ShaderBufferGL* shaderBuffer = find(m_tables.shaderBuffers, getSlotBuffer(member, slot));
    return shaderBuffer != nullptr && shaderBuffer->getBuffer() != nullptr ? shaderBuffer->getBuffer()->getSize() : 0;
}

void RendererGL46::prepareMergeMaps(DrawGL& draw)
{
    if (!m_shaderBufferMerging)
    {
        return;
    }
    for (size_t slot = 0; slot < slotCount; ++slot)
    {
        std::vector<ShaderBufferHandle> buffers;
        buffers.reserve(draw.drawProperties.size());
        for (const DrawPropertiesHandle& member : draw.drawProperties)
        {
            buffers.push_back(getSlotBuffer(member, slot));
        }
        draw.shaderBufferIndices[slot].assign(buffers);
    }
}

void RendererGL46::buildBatches(DrawGL& draw)
{
    releaseBatches(draw);
    if (draw.drawProperties.size() == 1 || !computeLimits(draw) || !m_mergingUsesUBO || fitsOneBatch(draw))
    {
        appendWholeDraw(draw);
    }
    else
    {
        splitIntoBatches(draw);
    }
}

/// False when the draw has no buffers that the limits could be computed from; they then stay open for another draw.
bool RendererGL46::computeLimits(const DrawGL& draw)
{
    if (m_maxDrawsPerBatch >= 0 && m_maxMergedEntries >= 0)
    {
        return true;
    }
    const DrawPropertiesHandle& first = draw.drawProperties.front();
    const uint64_t blockSize = std::max(getSlotBufferSize(first, 0), getSlotBufferSize(first, 1));
    if (blockSize == 0)
    {
        return false;
    }
    m_maxDrawsPerBatch = m_maxUniformBlockSize / uniformEntrySize;
    m_maxMergedEntries = static_cast<int32_t>(static_cast<uint64_t>(m_maxUniformBlockSize) / blockSize);
    return true;
}

bool RendererGL46::fitsOneBatch(const DrawGL& draw) const
{
    const auto maxEntries = static_cast<size_t>(m_maxMergedEntries);
    return draw.drawProperties.size() <= static_cast<size_t>(m_maxDrawsPerBatch) &&
           draw.shaderBufferIndices[0].size() <= maxEntries && draw.shaderBufferIndices[1].size() <= maxEntries;
}

bool RendererGL46::isFull(const Batch& batch) const
{
    // A block that is larger than a uniform block may be leaves room for no entry at all: each member then stands
    // alone.
    if (batch.drawProperties.empty())
    {
        return false;
    }
    const auto maxEntries = static_cast<size_t>(m_maxMergedEntries);
    return batch.drawProperties.size() >= static_cast<size_t>(m_maxDrawsPerBatch) ||
           batch.shaderBufferIndices[0].size() >= maxEntries || batch.shaderBufferIndices[1].size() >= maxEntries;
}

void RendererGL46::splitIntoBatches(DrawGL& draw)
{
    draw.batches.push_back(std::make_unique<Batch>());
    for (const DrawPropertiesHandle& member : draw.drawProperties)
    {
        if (isFull(*draw.batches.back()))
        {
            draw.batches.push_back(std::make_unique<Batch>());
        }
        Batch& batch = *draw.batches.back();
        for (size_t slot = 0; slot < slotCount; ++slot)
        {
            batch.shaderBufferIndices[slot].add(getSlotBuffer(member, slot));
        }
        batch.drawProperties.push_back(member);
    }
}

// Merged shader buffers

void RendererGL46::mergeShaderBuffers(Batch& batch, bool needRebuild)
{
    if (!m_shaderBufferMerging || batch.drawProperties.size() == 1)
    {
        return;
    }
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_THIRD_PARTY, "renderengine::RendererGL46::mergeShaderBuffers ");
    bool rebuild = needRebuild;
    for (size_t slot = 0; slot < slotCount && !rebuild; ++slot)
    {
        const ShaderBufferGL* merged = find(m_tables.shaderBuffers, batch.mergedShaderBuffers[slot]);
        rebuild = merged != nullptr && merged->isDirty();
    }
    if (!rebuild)
    {
        return;
    }
    // In the reverse order of their creation, so that the last raw buffer is always the one to go.
    for (size_t slot = slotCount; slot-- > 0;)
    {
        releaseMergedSlot(batch, slot);
    }
    for (size_t slot = 0; slot < slotCount; ++slot)
    {
        mergeSlot(batch, slot);
    }
}

void RendererGL46::releaseMergedSlot(Batch& batch, size_t slot)
{
    for (ShaderBufferHandle* handle : {&batch.mergedShaderBuffers[slot], &batch.indirectShaderBuffers[slot]})
    {
        if (!handle->isValid())
        {
            continue;
        }
        releaseResource(m_tables.shaderBuffers, *handle);
        if (!batch.rawBuffers.empty())
        {
            BufferHandle buffer = batch.rawBuffers.back();
            batch.rawBuffers.pop_back();
            releaseResource(m_tables.buffers, buffer);
        }
    }
}

void RendererGL46::mergeSlot(Batch& batch, size_t slot)
{
    const DrawPropertiesHandle& first = batch.drawProperties.front();
    const ShaderBufferGL* firstSource = find(m_tables.shaderBuffers, getSlotBuffer(first, slot));
    const uint64_t blockSize = getSlotBufferSize(first, slot);
    if (firstSource == nullptr || blockSize == 0)
    {
        return;
    }
    const std::string sourceName = firstSource->getName();
    createIndirectBuffer(batch, slot, sourceName);
    createMergedBuffer(batch, slot, sourceName, blockSize);
}

/// One entry for each member, in member order: the place of the member's block in the merged buffer.
void RendererGL46::createIndirectBuffer(Batch& batch, size_t slot, const std::string& sourceName)
{
    const size_t valuesPerEntry = m_mergingUsesUBO ? uniformEntrySize / sizeof(int32_t) : 1;
    std::vector<int32_t> entries(batch.drawProperties.size() * valuesPerEntry, 0);
    const ShaderBufferIndices& indices = batch.shaderBufferIndices[slot];
    for (size_t i = 0; i < batch.drawProperties.size(); ++i)
    {
        entries[i * valuesPerEntry] = indices.get(getSlotBuffer(batch.drawProperties[i], slot));
    }
    batch.indirectShaderBuffers[slot] = createMergeBuffer(batch, staticCopy, entries.size() * sizeof(int32_t),
                                                          entries.data(), sourceName + "IndirectBuffer");
}

void RendererGL46::createMergedBuffer(Batch& batch, size_t slot, const std::string& sourceName, uint64_t blockSize)
{
    const ShaderBufferIndices& indices = batch.shaderBufferIndices[slot];
    batch.mergedShaderBuffers[slot] =
        createMergeBuffer(batch, staticDraw, blockSize * indices.size(), nullptr, sourceName + "MergedBuffer");
    ShaderBufferGL& merged = *find(m_tables.shaderBuffers, batch.mergedShaderBuffers[slot]);
    batch.addDependency(merged);
    for (size_t i = 0; i < indices.size(); ++i)
    {
        if (i + prefetchedViews < indices.size())
        {
            prefetchView(m_tables.shaderBuffers, indices[i + prefetchedViews].first);
        }
        if (i + prefetchedBuffers < indices.size())
        {
            prefetchBuffer(m_tables.shaderBuffers, indices[i + prefetchedBuffers].first);
        }
        const auto& [handle, index] = indices[i];
        ShaderBufferGL* source = find(m_tables.shaderBuffers, handle);
        if (source != nullptr && source->getBuffer() != nullptr)
        {
            merged.addDependency(*source);
            source->getBuffer()->copy(*merged.getBuffer(), 0, static_cast<uint64_t>(index) * blockSize, 0);
        }
    }
    merged.setDirty(false);
}

ShaderBufferHandle RendererGL46::createMergeBuffer(Batch& batch, uint8_t kind, uint64_t size, const void* data,
                                                   std::string name)
{
    ShaderBufferProperties properties;
    properties.kind = m_mergingUsesUBO ? uniformBlock : storageBlock;
    properties.buffer = createInternalBuffer(batch, kind, size, data);
    properties.name = std::move(name);
    ShaderBufferHandle handle = generateShaderBufferHandle();
    createResource(m_tables.shaderBuffers, handle).create(properties, find(m_tables.buffers, properties.buffer));
    return handle;
}

GLuint RendererGL46::bindDrawShaderBuffers(const Batch& batch, const ShaderProgramGL& program, GLuint firstBinding)
{
    GLuint binding = RendererGL41::bindDrawShaderBuffers(batch, program, firstBinding);
    if (!m_shaderBufferMerging || !batch.built || batch.drawProperties.size() == 1)
    {
        return binding;
    }
    for (size_t slot = 0; slot < slotCount; ++slot)
    {
        if (!batch.mergedShaderBuffers[slot].isValid())
        {
            continue;
        }
        for (const ShaderBufferHandle& handle : {batch.indirectShaderBuffers[slot], batch.mergedShaderBuffers[slot]})
        {
            if (const ShaderBufferGL* buffer = find(m_tables.shaderBuffers, handle))
            {
                bindShaderBuffer(*buffer, program, binding);
                ++binding;
            }
        }
    }
    return binding;
}

} // namespace renderengine
