// Merging of index buffers, and the shared sequence of indices for ranges that have none.

#include "gl/RendererGL41.h"

#include "gl/RendererGL41Find.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

namespace renderengine
{

namespace
{

constexpr uint32_t minimumSequenceCount = 1048576;
constexpr uint32_t mapForWriting = 1;

const void* byteOffset(uint64_t offset)
{
    return reinterpret_cast<const void*>(static_cast<uintptr_t>(offset));
}

SbDataType indexDataType(uint32_t indexSize)
{
    switch (indexSize)
    {
    case 1:
        return SbDataType::UNSIGNED_BYTE;
    case 2:
        return SbDataType::UNSIGNED_SHORT;
    default:
        return SbDataType::UNSIGNED_INT;
    }
}

uint64_t indexCount(const DrawRange& range)
{
    return static_cast<uint64_t>(std::max(range.count, 0));
}

uint32_t clampToCount(uint64_t count)
{
    return static_cast<uint32_t>(std::min<uint64_t>(count, std::numeric_limits<uint32_t>::max()));
}

} // namespace

/// What the ranges of one primitive type have in common.
struct RendererGL41::PrimitiveUse
{
    uint32_t primitive = 0;
    bool used = false;
    uint64_t bufferSize = 0; ///< bytes of all its indices
    uint32_t indexSize = 4;  ///< of the last range
    bool ownIndices = false; ///< the one index buffer of all ranges is drawn from as it is
    IndexBufferHandle firstIndexBuffer;
};

void RendererGL41::mergeIndexBuffers(Batch& batch)
{
    batch.indexBuffers.clear();
    batch.mergedDraws.clear();
    const std::vector<const DrawProperties*> members = getMembers(batch);
    const std::array<PrimitiveUse, primitiveTypeCount> uses = gatherPrimitiveUses(batch, members);
    batch.mergedDraws.reserve(primitiveTypeCount);
    for (const PrimitiveUse& use : uses)
    {
        if (use.used)
        {
            if (use.ownIndices)
            {
                appendDrawOfOwnIndices(batch, members, use);
            }
            else
            {
                appendDrawOfMergedIndices(batch, members, use);
            }
        }
    }
}

std::array<RendererGL41::PrimitiveUse, RendererGL41::primitiveTypeCount>
RendererGL41::gatherPrimitiveUses(const Batch& batch, const std::vector<const DrawProperties*>& members) const
{
    std::array<PrimitiveUse, primitiveTypeCount> uses;
    for (const DrawProperties* member : members)
    {
        for (const DrawRange& range : member->ranges)
        {
            if (!isDrawable(range))
            {
                continue;
            }
            PrimitiveUse& use = uses[range.primitive];
            const IndexBufferGL* indexBuffer = find(m_tables.indexBuffers, range.indexBuffer);
            use.indexSize = indexBuffer != nullptr ? indexBuffer->getIndexSize() : 4;
            use.bufferSize += indexCount(range) * use.indexSize;
            if (!use.used)
            {
                use.used = true;
                use.primitive = range.primitive;
                use.ownIndices = batch.drawProperties.size() == 1;
                use.firstIndexBuffer = range.indexBuffer;
            }
            else if (range.indexBuffer != use.firstIndexBuffer)
            {
                use.ownIndices = false;
            }
        }
    }
    return uses;
}

/// False for a range that no merged draw can hold: an unknown primitive type, or an index buffer that is gone.
bool RendererGL41::isDrawable(const DrawRange& range) const
{
    if (range.primitive >= primitiveTypeCount)
    {
        return false;
    }
    if (!range.indexBuffer.isValid())
    {
        return true;
    }
    const IndexBufferGL* indexBuffer = find(m_tables.indexBuffers, range.indexBuffer);
    return indexBuffer != nullptr && indexBuffer->getBuffer() != nullptr;
}

void RendererGL41::appendDrawOfOwnIndices(Batch& batch, const std::vector<const DrawProperties*>& members,
                                          const PrimitiveUse& use)
{
    MergedDraw draw;
    draw.primitive = use.primitive;
    uint64_t indexEnd = 0;
    for (const DrawRange& range : members.front()->ranges)
    {
        if (range.primitive == use.primitive && isDrawable(range))
        {
            draw.primitiveRestart = range.primitiveRestart;
            draw.primitiveRestartValue = range.primitiveRestartValue;
            draw.count.push_back(range.count);
            draw.indices.push_back(byteOffset(range.indexOffset));
            draw.baseVertex.push_back(0);
            indexEnd = std::max(indexEnd, range.indexOffset / use.indexSize + indexCount(range));
        }
    }
    batch.indexBuffers.push_back(use.firstIndexBuffer.isValid() ? use.firstIndexBuffer
                                                                : getSequenceIndexBuffer(clampToCount(indexEnd)));
    batch.mergedDraws.push_back(std::move(draw));
}

void RendererGL41::appendDrawOfMergedIndices(Batch& batch, const std::vector<const DrawProperties*>& members,
                                             const PrimitiveUse& use)
{
    IndexBufferProperties properties;
    properties.dataType = indexDataType(use.indexSize);
    properties.buffer = createInternalBuffer(batch, 0, use.bufferSize, nullptr);
    IndexBufferHandle handle = generateIndexBufferHandle();
    IndexBufferGL& merged = createResource(m_tables.indexBuffers, handle);
    merged.create(properties, find(m_tables.buffers, properties.buffer));
    batch.addDependency(merged);
    batch.indexBuffers.push_back(handle);

    MergedDraw draw;
    draw.primitive = use.primitive;
    uint64_t writeOffset = 0;
    uint64_t vertexOffset = 0;
    for (const DrawProperties* member : members)
    {
        copyIndices(*member, use, merged, draw, writeOffset, vertexOffset);
        vertexOffset += getLargestElementCount(*member);
    }
    merged.setDirty(false);
    batch.ownedIndexBuffers.push_back(handle);
    batch.mergedDraws.push_back(std::move(draw));
}

/// Copies the indices of one member's ranges behind those of the members before it. They keep their values: the base
/// vertex moves them to the member's place in the merged vertex buffers.
void RendererGL41::copyIndices(const DrawProperties& member, const PrimitiveUse& use, IndexBufferGL& merged,
                               MergedDraw& draw, uint64_t& writeOffset, uint64_t vertexOffset)
{
    const auto isOfType = [this, &use](const DrawRange& range)
    { return range.primitive == use.primitive && isDrawable(range); };
    uint64_t total = 0;
    for (const DrawRange& range : member.ranges)
    {
        total += isOfType(range) ? indexCount(range) : 0;
    }
    for (const DrawRange& range : member.ranges)
    {
        if (!isOfType(range))
        {
            continue;
        }
        draw.primitiveRestart = range.primitiveRestart;
        draw.primitiveRestartValue = range.primitiveRestartValue;
        draw.count.push_back(range.count);
        draw.baseVertex.push_back(static_cast<GLint>(vertexOffset));
        draw.indices.push_back(byteOffset(writeOffset));

        const IndexBufferHandle sourceHandle =
            range.indexBuffer.isValid() ? range.indexBuffer : getSequenceIndexBuffer(clampToCount(total));
        IndexBufferGL* source = find(m_tables.indexBuffers, sourceHandle);
        const uint64_t size = indexCount(range) * use.indexSize;
        if (source != nullptr && source->getBuffer() != nullptr)
        {
            merged.addDependency(*source);
            // To copy no bytes is to copy all.
            if (size > 0)
            {
                source->getBuffer()->copy(*merged.getBuffer(), range.indexOffset, writeOffset, size);
            }
        }
        writeOffset += size;
    }
}

IndexBufferHandle RendererGL41::getSequenceIndexBuffer(uint32_t elementCount)
{
    BufferGL* buffer = find(m_tables.buffers, m_sequenceBuffer);
    if (buffer == nullptr)
    {
        m_sequenceCount = std::max(elementCount, minimumSequenceCount);
        m_sequenceBuffer = generateBufferHandle();
        BufferProperties bufferProperties;
        bufferProperties.size = uint64_t{m_sequenceCount} * sizeof(uint32_t);
        buffer = &createResource(m_tables.buffers, m_sequenceBuffer);
        buffer->create(bufferProperties);

        m_sequenceIndexBuffer = generateIndexBufferHandle();
        IndexBufferProperties properties;
        properties.dataType = SbDataType::UNSIGNED_INT;
        properties.buffer = m_sequenceBuffer;
        createResource(m_tables.indexBuffers, m_sequenceIndexBuffer).create(properties, buffer);
        fillSequence(*buffer);
    }
    else if (elementCount > m_sequenceCount)
    {
        const uint32_t formerCount = m_sequenceCount;
        const uint64_t grown = uint64_t{m_sequenceCount} + m_sequenceCount / 2;
        m_sequenceCount = std::max({elementCount, clampToCount(grown), minimumSequenceCount});
        buffer->resize(uint64_t{m_sequenceCount} * sizeof(uint32_t));
        if (!fillSequence(*buffer) && formerCount != 0)
        {
            // Other draws go on with what there was.
            m_sequenceCount = formerCount;
            buffer->resize(uint64_t{formerCount} * sizeof(uint32_t));
            fillSequence(*buffer);
        }
    }
    return m_sequenceIndexBuffer;
}

/// False when there is no store to fill; the count is 0 then, so that whoever asks next gets another try.
bool RendererGL41::fillSequence(BufferGL& buffer)
{
    buffer.map(0, buffer.getSize(), mapForWriting);
    if (auto* indices = static_cast<uint32_t*>(buffer.getMappedPointer()))
    {
        std::iota(indices, indices + m_sequenceCount, 0u);
        buffer.unmap();
        return true;
    }
    spdlog::error("[RendererGL] There is no buffer for the sequence of {} indices.", m_sequenceCount);
    m_sequenceCount = 0;
    return false;
}

} // namespace renderengine
