#include "RandomScene.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace renderengine
{

namespace
{

constexpr uint32_t instanceElements = 8;

template <class Value> void append(std::vector<uint8_t>& bytes, Value value)
{
    const size_t start = bytes.size();
    bytes.resize(start + sizeof(value));
    std::memcpy(&bytes[start], &value, sizeof(value));
}

void appendIndex(std::vector<uint8_t>& bytes, SbDataType type, uint32_t index)
{
    switch (type.getSize())
    {
    case 1:
        append(bytes, static_cast<uint8_t>(index));
        break;
    case 2:
        append(bytes, static_cast<uint16_t>(index));
        break;
    default:
        append(bytes, index);
        break;
    }
}

/// A component of an attribute: positions and shifts cover the picture, colours have any brightness.
void appendComponent(RandomNumbers& random, std::vector<uint8_t>& bytes, const RandomScene::VertexBuffer& buffer)
{
    const bool color = buffer.name == "color" || buffer.name == "tint";
    const float value = buffer.name == "shift" ? random.real(-0.3f, 0.3f)
                        : color                ? random.real(0.1f, 1.0f)
                                               : random.real(-0.95f, 0.95f);
    switch (buffer.dataType.getType())
    {
    case SbDataType::UNSIGNED_BYTE:
        append(bytes, static_cast<uint8_t>(value * 255.0f));
        break;
    case SbDataType::UNSIGNED_SHORT:
        append(bytes, static_cast<uint16_t>(value * 65535.0f));
        break;
    case SbDataType::SHORT:
        append(bytes, static_cast<int16_t>(value * 32767.0f));
        break;
    case SbDataType::DOUBLE:
        append(bytes, static_cast<double>(value));
        break;
    default:
        append(bytes, value);
        break;
    }
}

/// How ranges of one primitive type in one draw read their indices.
struct PrimitiveStyle
{
    SbDataType indexType;
    bool restart = false;
    uint32_t restartValue = 0xFFFFFFFF;
};

/// An index buffer that other ranges of the draw may read too.
struct SharedIndices
{
    size_t indexBuffer = 0;
    uint32_t primitive = 0;
    uint32_t count = 0;
    uint32_t vertexCount = 0; ///< all indices are below, but for the restart index
};

class SceneMaker
{
public:
    SceneMaker(uint32_t seed, MemberBlocks blocks, EmptyRanges emptyRanges)
        : m_random(seed), m_blocks(blocks), m_emptyPercent(emptyRanges == EmptyRanges::Some ? 4 : 0)
    {
    }

    RandomScene make()
    {
        const uint32_t transformCount = m_random.between(2, 6);
        for (uint32_t i = 0; i < transformCount; ++i)
        {
            m_scene.transforms.push_back({m_random.real(0.3f, 1.0f), m_random.real(0.3f, 1.0f),
                                          m_random.real(-0.4f, 0.4f), m_random.real(-0.4f, 0.4f)});
        }
        const uint32_t materialCount = m_random.between(2, 5);
        for (uint32_t i = 0; i < materialCount; ++i)
        {
            m_scene.materials.push_back(
                {m_random.real(0.2f, 1.0f), m_random.real(0.2f, 1.0f), m_random.real(0.2f, 1.0f), 1.0f});
        }
        const uint32_t drawCount = m_random.between(1, 3);
        for (uint32_t i = 0; i < drawCount; ++i)
        {
            addDraw();
        }
        return std::move(m_scene);
    }

private:
    void addDraw()
    {
        m_draw = RandomScene::Draw();
        m_styles.clear();
        m_sharedIndices.clear();
        chooseLayout();
        choosePrimitives();
        m_draw.maximum = m_primitives.size() > 1;
        m_draw.depthTest = !m_draw.maximum && m_random.chance(50);
        m_draw.pointSize = m_random.chance(50) ? 1.0f : 5.0f;
        const uint32_t memberCount = m_random.chance(35) ? 1 : m_random.between(2, 7);
        m_single = memberCount == 1;
        m_instanced = m_single && m_random.chance(40);
        for (uint32_t i = 0; i < memberCount; ++i)
        {
            addMember();
        }
        m_scene.draws.push_back(m_draw);
    }

    void chooseLayout()
    {
        m_constants = m_random.chance(50);
        const std::array<SbDataType, 3> positionTypes = {{SbDataType::FLOAT, SbDataType::SHORT, SbDataType::DOUBLE}};
        const std::array<SbDataType, 3> colorTypes = {
            {SbDataType::UNSIGNED_BYTE, SbDataType::FLOAT, SbDataType::UNSIGNED_SHORT}};
        m_layout = {makeLayout("position", positionTypes[m_random.below(3)], 3),
                    makeLayout("color", colorTypes[m_random.below(3)], m_random.chance(50) ? 4 : 3)};
        if (!m_constants)
        {
            m_layout.push_back(makeLayout("tint", colorTypes[m_random.below(3)], 4));
            m_layout.push_back(makeLayout("shift", SbDataType::FLOAT, 2));
        }
        m_shortTint = m_random.chance(30);
    }

    RandomScene::VertexBuffer makeLayout(const char* name, SbDataType type, uint8_t componentCount)
    {
        RandomScene::VertexBuffer buffer;
        buffer.name = name;
        buffer.dataType = type;
        buffer.componentCount = componentCount;
        buffer.normalized = type == SbDataType::FLOAT || type == SbDataType::DOUBLE ? 0 : 1;
        buffer.stride = m_random.chance(30) ? componentCount * type.getSize() : 0;
        return buffer;
    }

    void choosePrimitives()
    {
        const std::array<uint32_t, 10> all = {{0, 1, 2, 3, 4, 5, 6, 8, 9, 10}};
        m_primitives.clear();
        const uint32_t count = m_random.chance(40) ? 1 : m_random.between(2, 4);
        while (m_primitives.size() < count)
        {
            const uint32_t primitive = all[m_random.below(10)];
            if (std::find(m_primitives.begin(), m_primitives.end(), primitive) == m_primitives.end())
            {
                m_primitives.push_back(primitive);
                const std::array<SbDataType, 3> types = {
                    {SbDataType::UNSIGNED_BYTE, SbDataType::UNSIGNED_SHORT, SbDataType::UNSIGNED_INT}};
                PrimitiveStyle style;
                style.indexType = types[m_random.below(3)];
                style.restart = m_random.chance(40);
                style.restartValue = m_random.chance(50) ? 200 : 255;
                m_styles[primitive] = style;
            }
        }
    }

    void addMember()
    {
        RandomScene::Member member;
        const uint32_t vertexCount = m_random.between(3, 24);
        const RandomScene::Member* former = m_draw.members.empty() ? nullptr : &m_draw.members.back();
        if (former != nullptr && m_random.chance(25))
        {
            member.vertexBuffers = former->vertexBuffers;
            addRanges(member, m_vertexCount);
        }
        else
        {
            m_vertexCount = vertexCount;
            addVertexBuffers(member);
            addRanges(member, vertexCount);
        }
        if (m_constants)
        {
            addConstants(member);
        }
        const bool own = m_blocks == MemberBlocks::Own || former == nullptr;
        member.transform = own ? m_random.below(static_cast<uint32_t>(m_scene.transforms.size())) : former->transform;
        member.material = own ? m_random.below(static_cast<uint32_t>(m_scene.materials.size())) : former->material;
        m_draw.members.push_back(member);
    }

    void addVertexBuffers(RandomScene::Member& member)
    {
        for (RandomScene::VertexBuffer buffer : m_layout)
        {
            size_t count = m_vertexCount;
            if (m_instanced && buffer.name == "shift")
            {
                buffer.divisor = m_random.between(1, 2);
                count = instanceElements;
            }
            else if (!m_constants && m_random.chance(20))
            {
                // Longer than the other ones: the member takes that many elements in all merged buffers.
                count += m_random.between(1, 5);
            }
            buffer.data = makeRandomVertices(m_random, buffer, count);
            member.vertexBuffers.push_back(m_scene.vertexBuffers.size());
            m_scene.vertexBuffers.push_back(std::move(buffer));
        }
    }

    void addConstants(RandomScene::Member& member)
    {
        OverallAttribute tint;
        tint.name = "tint";
        tint.dataType = m_shortTint ? SbDataType::UNSIGNED_SHORT : SbDataType::UNSIGNED_BYTE;
        tint.normalized = 1;
        RandomScene::VertexBuffer layout;
        layout.name = tint.name;
        layout.dataType = tint.dataType;
        layout.componentCount = 4;
        const std::vector<uint8_t> tintBytes = makeRandomVertices(m_random, layout, 1);
        std::memcpy(tint.value, tintBytes.data(), tintBytes.size());
        OverallAttribute shift;
        shift.name = "shift";
        shift.dataType = SbDataType::FLOAT;
        shift.componentCount = 2;
        const std::array<float, 2> offset = {{m_random.real(-0.3f, 0.3f), m_random.real(-0.3f, 0.3f)}};
        std::memcpy(shift.value, offset.data(), sizeof(offset));
        member.overallAttributes = {tint, shift};
    }

    void addRanges(RandomScene::Member& member, uint32_t vertexCount)
    {
        const uint32_t rangeCount = m_random.between(1, 4);
        for (uint32_t i = 0; i < rangeCount; ++i)
        {
            member.ranges.push_back(makeRange(vertexCount));
        }
        if (m_instanced)
        {
            // One range with instances keeps all of them from being merged, so that each may start at any instance.
            member.ranges.front().properties.instanceCount = static_cast<int32_t>(m_random.between(2, 3));
            for (RandomScene::Range& range : member.ranges)
            {
                range.properties.baseInstance = m_random.below(3);
            }
        }
        if (m_single && rangeCount > 1 && m_random.chance(40) &&
            !m_styles[member.ranges.back().properties.primitive].restart)
        {
            member.ranges.back().properties.primitiveRestart = true;
            member.ranges.back().properties.primitiveRestartValue = 201;
        }
    }

    RandomScene::Range makeRange(uint32_t vertexCount)
    {
        RandomScene::Range range;
        const uint32_t primitive = m_primitives[m_random.below(static_cast<uint32_t>(m_primitives.size()))];
        const PrimitiveStyle& style = m_styles[primitive];
        range.properties.primitive = primitive;
        range.properties.primitiveRestart = style.restart;
        range.properties.primitiveRestartValue = style.restartValue;
        if (style.indexType == SbDataType::UNSIGNED_INT && m_random.chance(50))
        {
            const uint32_t first = m_random.below(vertexCount);
            range.properties.indexOffset = uint64_t{first} * 4;
            range.properties.count = static_cast<int32_t>(m_random.between(1, vertexCount - first));
            return range;
        }
        const SharedIndices indices = findOrMakeIndices(primitive, vertexCount);
        const uint32_t first = m_random.chance(50) ? 0 : m_random.below(indices.count);
        range.indexBuffer = indices.indexBuffer;
        range.properties.indexOffset = uint64_t{first} * style.indexType.getSize();
        range.properties.count =
            m_random.chance(m_emptyPercent) ? 0 : static_cast<int32_t>(m_random.between(1, indices.count - first));
        return range;
    }

    SharedIndices findOrMakeIndices(uint32_t primitive, uint32_t vertexCount)
    {
        for (const SharedIndices& shared : m_sharedIndices)
        {
            if (shared.primitive == primitive && shared.vertexCount <= vertexCount && m_random.chance(50))
            {
                return shared;
            }
        }
        const PrimitiveStyle& style = m_styles[primitive];
        SharedIndices made;
        made.indexBuffer = m_scene.indexBuffers.size();
        made.primitive = primitive;
        made.count = m_random.between(3, 20);
        made.vertexCount = vertexCount;
        RandomScene::IndexBuffer buffer;
        buffer.dataType = style.indexType;
        for (uint32_t i = 0; i < made.count; ++i)
        {
            const bool restart = style.restart && m_random.chance(15);
            appendIndex(buffer.data, style.indexType, restart ? style.restartValue : m_random.below(vertexCount));
        }
        m_scene.indexBuffers.push_back(std::move(buffer));
        m_sharedIndices.push_back(made);
        return made;
    }

    RandomNumbers m_random;
    MemberBlocks m_blocks;
    uint32_t m_emptyPercent;
    RandomScene m_scene;

    // Of the draw that is being made
    RandomScene::Draw m_draw;
    std::vector<RandomScene::VertexBuffer> m_layout;
    std::vector<uint32_t> m_primitives;
    std::map<uint32_t, PrimitiveStyle> m_styles;
    std::vector<SharedIndices> m_sharedIndices;
    uint32_t m_vertexCount = 0; ///< of the last member
    bool m_constants = false;
    bool m_shortTint = false;
    bool m_single = false;
    bool m_instanced = false;
};

} // namespace

RandomScene makeRandomScene(uint32_t seed, MemberBlocks blocks, EmptyRanges emptyRanges)
{
    return SceneMaker(seed, blocks, emptyRanges).make();
}

std::vector<uint8_t> makeRandomVertices(RandomNumbers& random, const RandomScene::VertexBuffer& vertexBuffer,
                                        size_t count)
{
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < count * vertexBuffer.componentCount; ++i)
    {
        appendComponent(random, bytes, vertexBuffer);
    }
    return bytes;
}

} // namespace renderengine
