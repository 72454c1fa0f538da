#pragma once

#include <renderengine/DrawRange.h>
#include <renderengine/OverallAttribute.h>

#include <kavelor/SbDataType.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace renderengine
{

/// Numbers that are the same on every system for the same seed.
class RandomNumbers
{
public:
    explicit RandomNumbers(uint32_t seed) : m_engine(seed * 2654435761u + 1u) {}

    /// 0 to count - 1.
    uint32_t below(uint32_t count) { return static_cast<uint32_t>(m_engine() % count); }
    /// first to last.
    uint32_t between(uint32_t first, uint32_t last) { return first + below(last - first + 1); }
    bool chance(uint32_t percent) { return below(100) < percent; }
    float real(float least, float most)
    {
        return least + (most - least) * static_cast<float>(m_engine() >> 8) / 16777216.0f;
    }

private:
    std::mt19937 m_engine;
};

/// Draws of several members, told without a renderer, such that merging may not show: whatever a merged draw does in
/// another order, or cannot do at all, is left out.
///
/// - A draw of several primitive types combines colours by their maximum, since merged ranges are drawn by type. A draw
///   of one type depends on the order of its ranges.
/// - Members of one draw have the same vertex layout. With constant attributes all vertex buffers of a member are of
///   one length.
/// - Ranges of one primitive type in a draw have one type of index. In a draw of several members they also share the
///   restart index and have no instances.
struct RandomScene
{
    struct VertexBuffer
    {
        std::string name;
        SbDataType dataType;
        uint8_t componentCount = 4;
        uint8_t normalized = 0;
        uint32_t stride = 0;
        uint32_t divisor = 0;
        std::vector<uint8_t> data;
    };

    struct IndexBuffer
    {
        SbDataType dataType;
        std::vector<uint8_t> data;
    };

    struct Range
    {
        std::optional<size_t> indexBuffer;
        DrawRange properties; ///< without its index buffer
    };

    struct Member
    {
        std::vector<size_t> vertexBuffers;
        std::vector<OverallAttribute> overallAttributes;
        std::vector<Range> ranges;
        size_t transform = 0;
        size_t material = 0;
    };

    struct Draw
    {
        std::vector<Member> members;
        bool maximum = false; ///< combines colours by their maximum, else the later fragment wins
        bool depthTest = false;
        float pointSize = 1.0f;
    };

    /// Four numbers of a uniform or storage block.
    using Block = std::array<float, 4>;

    std::vector<VertexBuffer> vertexBuffers;
    std::vector<IndexBuffer> indexBuffers;
    std::vector<Block> transforms;
    std::vector<Block> materials;
    std::vector<Draw> draws;
};

/// Which transforms and materials the members of a draw have.
enum class MemberBlocks
{
    Shared, ///< those of the first member, which any renderer shows
    Own     ///< any, which only merged shader buffers show
};

/// Whether some ranges have no index at all.
enum class EmptyRanges
{
    Some,
    None ///< for pictures: a driver may drop a multi-draw whose first entry is empty
};

RandomScene makeRandomScene(uint32_t seed, MemberBlocks blocks, EmptyRanges emptyRanges = EmptyRanges::Some);

/// Fresh bytes for one of the vertex buffers of a member, as random as those that it had.
std::vector<uint8_t> makeRandomVertices(RandomNumbers& random, const RandomScene::VertexBuffer& vertexBuffer,
                                        size_t count);

} // namespace renderengine
