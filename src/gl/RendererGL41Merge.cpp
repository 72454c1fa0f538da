// Merging: draws with many members are copied, on the GPU, into the shared buffers of a batch, so that one multi-draw
// per primitive type replaces one draw per range.

#include "gl/RendererGL41.h"

#include "gl/RendererGL41Find.h"

#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <numeric>

namespace renderengine
{

namespace
{

constexpr uint32_t drawIndexSlot = 13;
constexpr uint32_t mapForWriting = 1;
constexpr size_t knownPrimitiveTypes = 11;

/// Base vertices are signed.
constexpr uint64_t largestElementCount = std::numeric_limits<GLint>::max();

uint64_t saturatingSum(uint64_t a, uint64_t b)
{
    return a > std::numeric_limits<uint64_t>::max() - b ? std::numeric_limits<uint64_t>::max() : a + b;
}

uint32_t elementSize(const VertexBufferProperties& properties)
{
    return properties.componentCount * properties.dataType.getSize();
}

/// Null when the ranges can go into multi-draws, one a primitive type.
const char* findReasonAgainstMergingRanges(const std::vector<DrawRange>& ranges)
{
    if (ranges.size() <= 1)
    {
        return "its one geometry has at most one range";
    }
    std::array<const DrawRange*, knownPrimitiveTypes> firstOfType{};
    for (const DrawRange& range : ranges)
    {
        if (static_cast<uint32_t>(range.instanceCount) > 1)
        {
            return "a range of its one geometry is instanced";
        }
        if (range.primitive >= firstOfType.size())
        {
            return "a range of its one geometry has an unknown primitive type";
        }
        const DrawRange*& first = firstOfType[range.primitive];
        if (first == nullptr)
        {
            first = &range;
        }
        else if (range.primitiveRestart != first->primitiveRestart ||
                 range.primitiveRestartValue != first->primitiveRestartValue)
        {
            return "ranges of one primitive type differ in their primitive restart";
        }
    }
    return nullptr;
}

} // namespace

bool RendererGL41::isBatchListValid(const DrawGL& draw) const
{
    if (!draw.batchesValid || draw.batches.empty())
    {
        return false;
    }
    return std::none_of(draw.batches.begin(), draw.batches.end(),
                        [](const std::unique_ptr<Batch>& batch) { return batch->isDirty(); });
}

bool RendererGL41::canMerge(const DrawGL& draw) const
{
    if (isBatchListValid(draw))
    {
        return draw.batches.front()->built;
    }
    return findReasonAgainstMerging(draw) == nullptr;
}

/// Null when the draw can be merged, whatever its batches are now.
const char* RendererGL41::findReasonAgainstMerging(const DrawGL& draw) const
{
    // Several members are merged whatever the setting says, and whatever their ranges ask for.
    if (draw.drawProperties.size() > 1)
    {
        return nullptr;
    }
    static const bool s_enableMerging = SoPreferences::getBool("KVR_RENDERENGINE_ENABLE_PRIMITIVES_MERGING", true);
    if (!s_enableMerging)
    {
        return "the merging of its ranges is switched off";
    }
    const DrawPropertiesGL* member = find(m_tables.drawProperties, draw.drawProperties.front());
    return member != nullptr ? findReasonAgainstMergingRanges(member->properties->ranges) : "its geometry is gone";
}

void RendererGL41::explainMerging(const DrawHandle& handle, const DrawGL& draw, bool mergeable) const
{
    if (!mergeable)
    {
        spdlog::info("Merging: draw {} is not merged: {}", handle.id, findReasonAgainstMerging(draw));
        return;
    }
    size_t rangeCount = 0;
    size_t callCount = 0;
    for (const std::unique_ptr<Batch>& batch : draw.batches)
    {
        callCount += batch->mergedDraws.size();
        for (const MergedDraw& mergedDraw : batch->mergedDraws)
        {
            rangeCount += mergedDraw.count.size();
        }
    }
    spdlog::info("Merging: draw {} is merged (geometries: {}, ranges: {}, batches: {}, draw calls: {})", handle.id,
                 draw.drawProperties.size(), rangeCount, draw.batches.size(), callCount);
}

void RendererGL41::releaseBatches(DrawGL& draw)
{
    for (const std::unique_ptr<Batch>& batch : draw.batches)
    {
        if (batch->built)
        {
            releaseBatch(*batch);
        }
    }
    draw.batches.clear();
    draw.isPlain = false;
}

void RendererGL41::releaseBatch(Batch& batch)
{
    if (batch.merged)
    {
        for (VertexBufferHandle& handle : batch.vertexBuffers)
        {
            releaseResource(m_tables.vertexBuffers, handle);
        }
    }
    batch.vertexBuffers.clear();
    for (IndexBufferHandle& handle : batch.ownedIndexBuffers)
    {
        releaseResource(m_tables.indexBuffers, handle);
    }
    batch.ownedIndexBuffers.clear();
    batch.indexBuffers.clear();
    for (size_t slot = 0; slot < batch.mergedShaderBuffers.size(); ++slot)
    {
        releaseResource(m_tables.shaderBuffers, batch.indirectShaderBuffers[slot]);
        releaseResource(m_tables.shaderBuffers, batch.mergedShaderBuffers[slot]);
    }
    for (BufferHandle& handle : batch.rawBuffers)
    {
        releaseResource(m_tables.buffers, handle);
    }
    batch.rawBuffers.clear();
}

void RendererGL41::appendWholeDraw(DrawGL& draw)
{
    draw.batches.push_back(std::make_unique<Batch>());
    Batch& batch = *draw.batches.back();
    batch.drawProperties = draw.drawProperties;
    batch.shaderBufferIndices = draw.shaderBufferIndices;
}

void RendererGL41::buildBatches(DrawGL& draw)
{
    draw.batches.clear();
    appendWholeDraw(draw);
}

void RendererGL41::prepareMergeMaps(DrawGL& /*draw*/) {}

void RendererGL41::mergeShaderBuffers(Batch& /*batch*/, bool /*needRebuild*/) {}

/// The single batch of a draw that is drawn range by range. It owns nothing: `built` and `merged` stay false.
void RendererGL41::buildPlainBatch(DrawGL& draw)
{
    draw.batches.clear();
    draw.isPlain = true;
    draw.plainDraw.clear();
    appendWholeDraw(draw);
    Batch& batch = *draw.batches.back();
    holdFirstMember(batch);
    if (!batch.firstMember)
    {
        return;
    }
    batch.vertexBuffers = batch.firstMember->vertexBuffers;
    for (const DrawRange& range : batch.firstMember->ranges)
    {
        const uint32_t sequenceCount = static_cast<uint32_t>(range.indexOffset) + static_cast<uint32_t>(range.count);
        batch.indexBuffers.push_back(range.indexBuffer.isValid() ? range.indexBuffer
                                                                 : getSequenceIndexBuffer(sequenceCount));
    }
}

void RendererGL41::holdFirstMember(Batch& batch) const
{
    const DrawPropertiesGL* member = find(m_tables.drawProperties, batch.drawProperties.front());
    batch.firstMember = member != nullptr ? member->properties : nullptr;
}

void RendererGL41::buildMergedBatch(Batch& batch)
{
    holdFirstMember(batch);
    batch.merged = batch.drawProperties.size() > 1;
    if (batch.merged)
    {
        if (!mergeVertexBuffers(batch))
        {
            batch.built = true;
            return;
        }
        mergeOverallAttributes(batch);
    }
    else if (batch.firstMember)
    {
        batch.vertexBuffers = batch.firstMember->vertexBuffers;
    }
    mergeIndexBuffers(batch);
    batch.built = true;
}

std::vector<const DrawProperties*> RendererGL41::getMembers(const Batch& batch) const
{
    std::vector<const DrawProperties*> members;
    members.reserve(batch.drawProperties.size());
    for (const DrawPropertiesHandle& handle : batch.drawProperties)
    {
        if (const DrawPropertiesGL* member = find(m_tables.drawProperties, handle))
        {
            members.push_back(member->properties.get());
        }
    }
    return members;
}

uint64_t RendererGL41::getElementCount(const VertexBufferHandle& handle) const
{
    const VertexBufferGL* vertexBuffer = find(m_tables.vertexBuffers, handle);
    if (vertexBuffer == nullptr || vertexBuffer->getBuffer() == nullptr)
    {
        return 0;
    }
    const VertexBufferProperties& properties = vertexBuffer->getProperties();
    const uint64_t stride = properties.stride != 0 ? properties.stride : elementSize(properties);
    return stride != 0 ? vertexBuffer->getBuffer()->getSize() / stride : 0;
}

uint64_t RendererGL41::getLargestElementCount(const DrawProperties& properties) const
{
    uint64_t largest = 0;
    for (const VertexBufferHandle& handle : properties.vertexBuffers)
    {
        largest = std::max(largest, getElementCount(handle));
    }
    return largest;
}

BufferHandle RendererGL41::createInternalBuffer(Batch& batch, uint8_t kind, uint64_t size, const void* data)
{
    BufferHandle handle = generateBufferHandle();
    BufferProperties properties;
    properties.kind = kind;
    properties.size = size;
    properties.data = data;
    createResource(m_tables.buffers, handle).create(properties);
    batch.rawBuffers.push_back(handle);
    return handle;
}

/// Asks for what merging the members behind the current one reads.
void RendererGL41::prefetchMembers(const std::vector<const DrawProperties*>& members, size_t current) const
{
    if (current + prefetchedViews < members.size())
    {
        const DrawProperties& member = *members[current + prefetchedViews];
        for (const VertexBufferHandle& handle : member.vertexBuffers)
        {
            prefetchView(m_tables.vertexBuffers, handle);
        }
        for (const DrawRange& range : member.ranges)
        {
            prefetchView(m_tables.indexBuffers, range.indexBuffer);
        }
    }
    if (current + prefetchedBuffers < members.size())
    {
        const DrawProperties& member = *members[current + prefetchedBuffers];
        for (const VertexBufferHandle& handle : member.vertexBuffers)
        {
            prefetchBuffer(m_tables.vertexBuffers, handle);
        }
        for (const DrawRange& range : member.ranges)
        {
            prefetchBuffer(m_tables.indexBuffers, range.indexBuffer);
        }
    }
}

/// False when the members have more vertices than a draw can address; the batch then has nothing to draw.
bool RendererGL41::mergeVertexBuffers(Batch& batch)
{
    batch.vertexBuffers.clear();
    const std::vector<const DrawProperties*> members = getMembers(batch);
    if (members.empty())
    {
        return true;
    }
    std::vector<uint64_t> offsetElements;
    offsetElements.reserve(members.size());
    for (size_t i = 0; i < members.size(); ++i)
    {
        prefetchMembers(members, i);
        offsetElements.push_back(getLargestElementCount(*members[i]));
    }
    const uint64_t elementCount =
        std::accumulate(offsetElements.begin(), offsetElements.end(), uint64_t{0}, saturatingSum);
    if (elementCount > largestElementCount)
    {
        spdlog::error("[RendererGL] A draw of {} geometries has {} vertices, which are too many to be merged.",
                      members.size(), elementCount);
        dependOnVertexBuffers(batch, members);
        return false;
    }
    for (size_t position = 0; position < members.front()->vertexBuffers.size(); ++position)
    {
        mergeVertexBuffer(batch, members, position, offsetElements, elementCount);
    }
    appendDrawIndices(batch, offsetElements, elementCount);
    return true;
}

/// Lets a change of any of the members' vertex buffers lead to another try.
void RendererGL41::dependOnVertexBuffers(Batch& batch, const std::vector<const DrawProperties*>& members)
{
    for (const DrawProperties* member : members)
    {
        for (const VertexBufferHandle& handle : member->vertexBuffers)
        {
            if (VertexBufferGL* vertexBuffer = find(m_tables.vertexBuffers, handle))
            {
                batch.addDependency(*vertexBuffer);
            }
        }
    }
}

void RendererGL41::mergeVertexBuffer(Batch& batch, const std::vector<const DrawProperties*>& members, size_t position,
                                     const std::vector<uint64_t>& offsetElements, uint64_t elementCount)
{
    const VertexBufferGL* pattern = find(m_tables.vertexBuffers, members.front()->vertexBuffers[position]);
    if (pattern == nullptr)
    {
        return;
    }
    VertexBufferProperties properties = pattern->getProperties();
    const uint64_t bytesPerElement = elementSize(properties);
    properties.buffer = createInternalBuffer(batch, 0, elementCount * bytesPerElement, nullptr);
    VertexBufferGL& merged = appendVertexBuffer(batch, properties);
    batch.addDependency(merged);

    const BufferGL& destination = *merged.getBuffer();
    uint64_t destinationOffset = 0;
    for (size_t i = 0; i < members.size(); ++i)
    {
        if (position < members[i]->vertexBuffers.size())
        {
            VertexBufferGL* source = find(m_tables.vertexBuffers, members[i]->vertexBuffers[position]);
            if (source != nullptr && source->getBuffer() != nullptr)
            {
                merged.addDependency(*source);
                source->getBuffer()->copy(destination, 0, destinationOffset, 0);
            }
        }
        destinationOffset += offsetElements[i] * bytesPerElement;
    }
    merged.setDirty(false);
}

/// Tells the shader which member a vertex belongs to. The bits of an unsigned integer travel as a float attribute,
/// without a conversion; the shader reads them as bits.
void RendererGL41::appendDrawIndices(Batch& batch, const std::vector<uint64_t>& offsetElements, uint64_t elementCount)
{
    std::vector<uint32_t> drawIndices;
    drawIndices.reserve(elementCount);
    for (size_t i = 0; i < offsetElements.size(); ++i)
    {
        drawIndices.insert(drawIndices.end(), offsetElements[i], static_cast<uint32_t>(i));
    }
    VertexBufferProperties properties;
    properties.slot = drawIndexSlot;
    properties.dataType = SbDataType::FLOAT;
    properties.componentCount = 1;
    properties.name = "KvrAttribDrawIndex";
    properties.buffer = createInternalBuffer(batch, 0, elementCount * sizeof(uint32_t), drawIndices.data());
    appendVertexBuffer(batch, properties);
}

VertexBufferGL& RendererGL41::appendVertexBuffer(Batch& batch, const VertexBufferProperties& properties)
{
    VertexBufferHandle handle = generateVertexBufferHandle();
    VertexBufferGL& vertexBuffer = createResource(m_tables.vertexBuffers, handle);
    vertexBuffer.create(properties, find(m_tables.buffers, properties.buffer));
    batch.vertexBuffers.push_back(handle);
    return vertexBuffer;
}

void RendererGL41::mergeOverallAttributes(Batch& batch)
{
    const std::vector<const DrawProperties*> members = getMembers(batch);
    if (members.empty() || batch.vertexBuffers.empty())
    {
        return;
    }
    const uint64_t elementCount = getElementCount(batch.vertexBuffers.front());
    for (size_t i = 0; i < members.front()->overallAttributes.size(); ++i)
    {
        mergeOverallAttribute(batch, members, i, elementCount);
    }
}

void RendererGL41::mergeOverallAttribute(Batch& batch, const std::vector<const DrawProperties*>& members,
                                         size_t position, uint64_t elementCount)
{
    const OverallAttribute& pattern = members.front()->overallAttributes[position];
    const uint64_t valueSize =
        std::min<uint64_t>(uint64_t{pattern.dataType.getSize()} * pattern.componentCount, sizeof(pattern.value));
    const uint64_t bufferSize = valueSize * elementCount;
    const BufferHandle handle = createInternalBuffer(batch, 0, bufferSize, nullptr);
    BufferGL& buffer = *find(m_tables.buffers, handle);
    buffer.map(0, bufferSize, mapForWriting);
    if (auto* destination = static_cast<std::byte*>(buffer.getMappedPointer()))
    {
        const std::byte* const end = destination + bufferSize;
        for (const DrawProperties* member : members)
        {
            if (position >= member->overallAttributes.size() || member->vertexBuffers.empty())
            {
                continue;
            }
            const uint64_t count = getElementCount(member->vertexBuffers.front());
            for (uint64_t i = 0; i < count && destination + valueSize <= end; ++i, destination += valueSize)
            {
                std::memcpy(destination, member->overallAttributes[position].value, valueSize);
            }
        }
        buffer.unmap();
    }
    VertexBufferProperties properties;
    properties.slot = pattern.slot;
    properties.dataType = pattern.dataType;
    properties.normalized = pattern.normalized;
    properties.componentCount = pattern.componentCount;
    properties.name = pattern.name;
    properties.buffer = handle;
    appendVertexBuffer(batch, properties);
}

} // namespace renderengine
