#include "RendererFixture.h"

#include "gl/ShaderBufferIndices.h"

#include <kavelor/SoPreferences.h>

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace renderengine
{
namespace
{

/// Buffer 1 and 2 are those of the scene.
class RendererGL41MergeTest : public RendererGLTest
{
protected:
    template <class Value> std::vector<Value> contentOf(GLuint buffer)
    {
        const std::vector<std::byte> bytes = gl.bufferContent(buffer);
        std::vector<Value> values(bytes.size() / sizeof(Value));
        std::memcpy(values.data(), bytes.data(), values.size() * sizeof(Value));
        return values;
    }

    BufferHandle bufferOf(std::initializer_list<uint32_t> values)
    {
        const std::vector<uint32_t> data(values);
        return makeBuffer(data.size() * 4, data.data());
    }

    /// One component a vertex, of the given bits.
    VertexBufferHandle vertices(const std::string& name, std::initializer_list<uint32_t> values)
    {
        VertexBufferProperties properties;
        properties.componentCount = 1;
        properties.buffer = bufferOf(values);
        properties.name = name;
        const VertexBufferHandle handle = renderer->generateVertexBufferHandle();
        run<CommandCreateVertexBuffer>(handle, properties);
        return handle;
    }

    IndexBufferHandle indices(std::initializer_list<uint32_t> values)
    {
        IndexBufferProperties properties;
        properties.dataType = SbDataType::UNSIGNED_INT;
        properties.buffer = bufferOf(values);
        const IndexBufferHandle handle = renderer->generateIndexBufferHandle();
        run<CommandCreateIndexBuffer>(handle, properties);
        return handle;
    }

    static DrawRange range(const IndexBufferHandle& indexBuffer, int32_t count, uint64_t offset = 0,
                           uint32_t primitive = 4)
    {
        DrawRange result;
        result.indexBuffer = indexBuffer;
        result.count = count;
        result.indexOffset = offset;
        result.primitive = primitive;
        return result;
    }

    bool drawsMerged(const Scene& scene)
    {
        gl.clear();
        run<CommandRender>(scene.draw);
        return gl.countOf("glMultiDrawElementsBaseVertex(") > 0;
    }

    void setRanges(Scene& scene, const std::vector<DrawRange>& ranges)
    {
        scene.properties.ranges = ranges;
        run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    }
};

TEST_F(RendererGL41MergeTest, TwoRangesOfOneMemberBecomeAMultiDrawOfTheirOwnBuffer)
{
    Scene scene = makeScene();
    setRanges(scene, {range(scene.indexBuffer, 3), range(scene.indexBuffer, 2, 4)});
    drawCalls(scene);
    EXPECT_EQ(drawCalls(scene),
              (Texts{"glUniform1f(0, 1)", "glUniform1i(1, 0)", "glBindBuffer(GL_ARRAY_BUFFER, 1)",
                     "glEnableVertexAttribArray(0)", "glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, null)",
                     "glVertexAttribDivisor(0, 0)", "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 2)",
                     "glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 2}, GL_UNSIGNED_INT, {null, 4}, 2, {0, 0})",
                     "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)", "glDisableVertexAttribArray(0)"}));
    EXPECT_EQ(gl.made("Buffer"), 2u) << "nothing is copied";
}

TEST_F(RendererGL41MergeTest, OneRangeIsNotMerged)
{
    Scene scene = makeScene();
    EXPECT_FALSE(drawsMerged(scene));
}

TEST_F(RendererGL41MergeTest, DifferentRestartValuesOfOnePrimitiveTypeAreDrawnRangeByRange)
{
    Scene scene = makeScene();
    std::vector<DrawRange> ranges = {range(scene.indexBuffer, 3), range(scene.indexBuffer, 3)};
    ranges[1].primitiveRestartValue = 5;
    setRanges(scene, ranges);
    EXPECT_FALSE(drawsMerged(scene));
    EXPECT_EQ(gl.countOf("glDrawElementsInstancedBaseInstance("), 2u);
    // Another primitive type may have another value.
    ranges[1].primitive = 1;
    setRanges(scene, ranges);
    EXPECT_TRUE(drawsMerged(scene));
}

TEST_F(RendererGL41MergeTest, InstancedRangeIsNotMergedInOneMemberButIsInTwo)
{
    Scene scene = makeScene();
    std::vector<DrawRange> ranges = {range(scene.indexBuffer, 3), range(scene.indexBuffer, 3)};
    ranges[1].instanceCount = 2;
    setRanges(scene, ranges);
    EXPECT_FALSE(drawsMerged(scene));
    EXPECT_EQ(gl.countOf("glDrawElementsInstancedBaseInstance("), 2u);
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    EXPECT_TRUE(drawsMerged(scene)) << "and the instances are lost";
    EXPECT_EQ(gl.countOf("glDrawElementsInstanced"), 0u);
}

TEST_F(RendererGL41MergeTest, SettingGovernsSingleMembersOnly)
{
    SoPreferences::setBool("KVR_RENDERENGINE_ENABLE_PRIMITIVES_MERGING", false);
    Scene scene = makeScene();
    setRanges(scene, {range(scene.indexBuffer, 3), range(scene.indexBuffer, 3)});
    EXPECT_FALSE(drawsMerged(scene));
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    EXPECT_TRUE(drawsMerged(scene));
}

TEST_F(RendererGL41MergeTest, TwoMembersAreCopiedIntoSharedBuffers)
{
    const Scene scene = makeScene();
    DrawProperties first;
    first.vertexBuffers = {vertices("position", {10, 11, 12}), vertices("normal", {20, 21, 22, 23})};
    first.ranges = {range(indices({0, 1, 2}), 3)};
    DrawProperties second;
    second.vertexBuffers = {vertices("position", {30, 31}), vertices("normal", {40, 41})};
    second.ranges = {range(indices({7, 0, 1}), 2, 4), range(IndexBufferHandle(), 2, 0, 0)};
    const DrawHandle draw = makeDraw(scene, {makeMember(first), makeMember(second)});
    drawCalls(scene);

    // Sources are buffers 3 to 8. The members take 4 and 2 elements.
    gl.clear();
    run<CommandRender>(draw);
    Texts merging(gl.calls().begin() + 1, std::find(gl.calls().begin(), gl.calls().end(), "glUniform1i(1, 0)"));
    const auto copy = [](int from, int to, int readOffset, int writeOffset, int size)
    {
        return Texts{"glBindBuffer(GL_COPY_WRITE_BUFFER, " + std::to_string(to) + ")",
                     "glBindBuffer(GL_COPY_READ_BUFFER, " + std::to_string(from) + ")",
                     "glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, <pointer>)",
                     "glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, " + std::to_string(readOffset) +
                         ", " + std::to_string(writeOffset) + ", " + std::to_string(size) + ")",
                     "glBindBuffer(GL_COPY_WRITE_BUFFER, 0)",
                     "glBindBuffer(GL_COPY_READ_BUFFER, 0)"};
    };
    const auto create = [](int name, int size, const char* data)
    {
        return Texts{"glGenBuffers(1, -> " + std::to_string(name) + ")",
                     "glBindBuffer(GL_ARRAY_BUFFER, " + std::to_string(name) + ")",
                     "glBufferData(GL_ARRAY_BUFFER, " + std::to_string(size) + ", " + data + ", GL_STATIC_DRAW)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 0)"};
    };
    const Texts sequence = {
        "glBindBuffer(GL_ARRAY_BUFFER, 13)", "glMapBufferRange(GL_ARRAY_BUFFER, 0, 4194304, GL_MAP_WRITE_BIT)",
        "glBindBuffer(GL_ARRAY_BUFFER, 0)",  "glBindBuffer(GL_ARRAY_BUFFER, 13)",
        "glUnmapBuffer(GL_ARRAY_BUFFER)",    "glBindBuffer(GL_ARRAY_BUFFER, 0)"};
    EXPECT_EQ(merging, join({create(9, 24, "null"), copy(3, 9, 0, 0, 12), copy(6, 9, 0, 16, 8),    // positions
                             create(10, 24, "null"), copy(4, 10, 0, 0, 16), copy(7, 10, 0, 16, 8), // normals
                             create(11, 24, "<pointer>"),                                          // draw indices
                             create(12, 8, "null"), create(13, 4194304, "null"), sequence,         // points
                             copy(13, 12, 0, 0, 8),                                                //
                             create(14, 20, "null"), copy(5, 14, 0, 0, 12), copy(8, 14, 4, 12, 8)}));
    EXPECT_EQ(contentOf<uint32_t>(9), (std::vector<uint32_t>{10, 11, 12, 0, 30, 31}));
    EXPECT_EQ(contentOf<uint32_t>(10), (std::vector<uint32_t>{20, 21, 22, 23, 40, 41}));
    EXPECT_EQ(contentOf<uint32_t>(11), (std::vector<uint32_t>{0, 0, 0, 0, 1, 1}));
    EXPECT_EQ(contentOf<uint32_t>(12), (std::vector<uint32_t>{0, 1}));
    EXPECT_EQ(contentOf<uint32_t>(14), (std::vector<uint32_t>{0, 1, 2, 0, 1}));

    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glUniform1f(0, 1)",
                     "glUniform1i(1, 0)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 9)",
                     "glEnableVertexAttribArray(0)",
                     "glVertexAttribPointer(0, 1, GL_FLOAT, GL_FALSE, 0, null)",
                     "glVertexAttribDivisor(0, 0)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 10)",
                     "glEnableVertexAttribArray(1)",
                     "glVertexAttribPointer(1, 1, GL_FLOAT, GL_FALSE, 0, null)",
                     "glVertexAttribDivisor(1, 0)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 11)",
                     "glEnableVertexAttribArray(2)",
                     "glVertexAttribPointer(2, 1, GL_FLOAT, GL_FALSE, 0, null)",
                     "glVertexAttribDivisor(2, 0)",
                     "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 12)",
                     "glMultiDrawElementsBaseVertex(GL_POINTS, {2}, GL_UNSIGNED_INT, {null}, 1, {4})",
                     "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)",
                     "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 14)",
                     "glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 2}, GL_UNSIGNED_INT, {null, 12}, 2, {0, 4})",
                     "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)",
                     "glDisableVertexAttribArray(0)",
                     "glDisableVertexAttribArray(1)",
                     "glDisableVertexAttribArray(2)"}));
}

TEST_F(RendererGL41MergeTest, OverallAttributesBecomeAStream)
{
    const Scene scene = makeScene();
    DrawProperties first;
    first.vertexBuffers = {vertices("position", {1, 2})};
    first.ranges = {range(indices({0, 1}), 2)};
    OverallAttribute attribute;
    attribute.name = "normal";
    attribute.componentCount = 1;
    const float firstValue = 1.5f;
    std::memcpy(attribute.value, &firstValue, sizeof(firstValue));
    first.overallAttributes = {attribute};
    DrawProperties second = first;
    second.vertexBuffers = {vertices("position", {3, 4, 5})};
    const float secondValue = 2.5f;
    std::memcpy(second.overallAttributes[0].value, &secondValue, sizeof(secondValue));
    const DrawHandle draw = makeDraw(scene, {makeMember(first), makeMember(second)});
    gl.clear();
    run<CommandRender>(draw);
    // Behind the sources: merged positions, draw indices, the stream, merged indices.
    EXPECT_EQ(contentOf<float>(8), (std::vector<float>{1.5f, 1.5f, 2.5f, 2.5f, 2.5f}));
    EXPECT_EQ(gl.countOf("glVertexAttribPointer(1, 1, GL_FLOAT, GL_FALSE, 0, null)"), 1u);
    EXPECT_EQ(gl.countOf("glVertexAttrib1fv("), 0u);
}

TEST_F(RendererGL41MergeTest, MapThatFailsLeavesTheStreamUnfilled)
{
    Scene scene = makeScene();
    OverallAttribute attribute;
    attribute.name = "normal";
    scene.properties.overallAttributes = {attribute};
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    gl.fail("glMapBufferRange");
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glUnmapBuffer("), 0u);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 1u);
}

TEST_F(RendererGL41MergeTest, ChangeOfASourceRebuildsTheBatchAndFreesTheFormerBuffers)
{
    const Scene scene = makeScene();
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    drawCalls(scene);
    const size_t live = gl.live("Buffer");
    const Texts steady = drawCalls(scene);
    EXPECT_EQ(countOf(steady, "glGenBuffers("), 0u);

    BufferProperties properties;
    properties.size = 36;
    run<CommandUpdateBuffer>(BufferHandle(0), properties);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glDeleteBuffers("), 3u) << "positions, draw indices, indices";
    EXPECT_EQ(gl.countOf("glGenBuffers("), 3u);
    EXPECT_EQ(gl.live("Buffer"), live);

    // A read mapping changes nothing.
    run<CommandMapBuffer>(BufferHandle(0), 0u, 36u, 0u);
    run<CommandUnmapBuffer>(BufferHandle(0));
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glGenBuffers("), 0u);
}

TEST_F(RendererGL41MergeTest, CopyIntoASourceLeavesTheBatchAsItIs)
{
    const Scene scene = makeScene();
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    drawCalls(scene);
    const Texts steady = drawCalls(scene);
    const std::vector<float> merged = contentOf<float>(3);
    const std::array<float, 3> other = {7.0f, 8.0f, 9.0f};
    const BufferHandle source = makeBuffer(sizeof(other), other.data());
    run<CommandCopyBuffer>(source, BufferHandle(0), 4u, 12u, 8u);
    EXPECT_EQ(contentOf<float>(1)[3], 8.0f);
    EXPECT_EQ(contentOf<float>(1)[4], 9.0f);
    EXPECT_EQ(drawCalls(scene), steady);
    EXPECT_EQ(contentOf<float>(3), merged);
}

TEST_F(RendererGL41MergeTest, DestroyOfADrawFreesItsBuffersAndTheirNumbers)
{
    const Scene scene = makeScene();
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    const uint32_t before = renderer->generateBufferHandle().id;
    drawCalls(scene);
    run<CommandDestroyDraw>(scene.draw);
    EXPECT_EQ(gl.live("Buffer"), 2u);
    std::vector<uint32_t> reused = {renderer->generateBufferHandle().id, renderer->generateBufferHandle().id,
                                    renderer->generateBufferHandle().id};
    std::sort(reused.begin(), reused.end());
    EXPECT_EQ(reused, (std::vector<uint32_t>{before + 1, before + 2, before + 3}));
}

TEST_F(RendererGL41MergeTest, UpdatedRangesReachASingleMember)
{
    Scene scene = makeScene();
    setRanges(scene, {range(scene.indexBuffer, 3), range(scene.indexBuffer, 2)});
    EXPECT_TRUE(drawsMerged(scene));
    setRanges(scene, {range(scene.indexBuffer, 1)});
    EXPECT_FALSE(drawsMerged(scene));
    EXPECT_EQ(gl.countOf("glDrawElementsInstancedBaseInstance(GL_TRIANGLES, 1, "), 1u);
}

TEST_F(RendererGL41MergeTest, RangesWithTwoIndexBuffersAreCopiedIntoOne)
{
    Scene scene = makeScene();
    setRanges(scene, {range(indices({0, 1, 2}), 3), range(indices({2, 1, 0}), 3)});
    drawsMerged(scene);
    EXPECT_EQ(contentOf<uint32_t>(5), (std::vector<uint32_t>{0, 1, 2, 2, 1, 0}));
    EXPECT_EQ(gl.callsMatching("glMultiDraw"),
              Texts{"glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 3}, GL_UNSIGNED_INT, {null, 12}, 2, {0, 0})"});
}

TEST_F(RendererGL41MergeTest, ATypeThatNoRangeUsesMakesNoMultiDraw)
{
    Scene scene = makeScene();
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    setRanges(scene, {range(scene.indexBuffer, 3, 0, 0), range(scene.indexBuffer, 3, 0, 10)});
    drawCalls(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.callsMatching("glMultiDrawElementsBaseVertex"),
              (Texts{"glMultiDrawElementsBaseVertex(GL_POINTS, {3}, GL_UNSIGNED_INT, {null}, 1, {0})",
                     "glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3}, GL_UNSIGNED_INT, {null}, 1, {3})",
                     "glMultiDrawElementsBaseVertex(GL_POLYGON, {3}, GL_UNSIGNED_INT, {null}, 1, {0})"}));
}

TEST_F(RendererGL41MergeTest, RangesOfAnUnknownTypeAreSkippedInAMergedBatch)
{
    Scene scene = makeScene();
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    setRanges(scene,
              {range(scene.indexBuffer, 3, 0, 11), range(scene.indexBuffer, 2), range(scene.indexBuffer, 1, 0, 99)});
    drawsMerged(scene);
    EXPECT_EQ(gl.callsMatching("glMultiDraw"),
              Texts{"glMultiDrawElementsBaseVertex(GL_TRIANGLES, {2, 3}, GL_UNSIGNED_INT, {null, 8}, 2, {0, 3})"});
}

TEST_F(RendererGL41MergeTest, LastRestartIndexOfATypeHoldsForAllMembers)
{
    Scene scene = makeScene();
    DrawProperties second = scene.properties;
    scene.properties.ranges[0].primitiveRestart = true;
    scene.properties.ranges[0].primitiveRestartValue = 5;
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    second.ranges[0].primitiveRestart = true;
    second.ranges[0].primitiveRestartValue = 7;
    run<CommandAddDrawProperties>(scene.draw, makeMember(second));
    ASSERT_TRUE(drawsMerged(scene));
    EXPECT_EQ(gl.callsMatching("glPrimitiveRestartIndex"), Texts{"glPrimitiveRestartIndex(7)"});
}

TEST_F(RendererGL41MergeTest, InstanceCountsAreComparedUnsigned)
{
    Scene scene = makeScene();
    std::vector<DrawRange> ranges = {range(scene.indexBuffer, 3), range(scene.indexBuffer, 3)};
    ranges[1].instanceCount = -1;
    setRanges(scene, ranges);
    EXPECT_FALSE(drawsMerged(scene));
    ranges[1].instanceCount = 0;
    setRanges(scene, ranges);
    EXPECT_TRUE(drawsMerged(scene));
}

TEST_F(RendererGL41MergeTest, VerticesBeyondEveryCountAreNotMergedUntilTheyAreFewer)
{
    Scene scene = makeScene();
    const DrawPropertiesHandle second = makeMember(scene.properties);
    run<CommandAddDrawProperties>(scene.draw, second);
    ASSERT_TRUE(drawsMerged(scene));
    run<CommandResizeBuffer>(BufferHandle(0), uint64_t{1} << 62);
    log.take();
    EXPECT_FALSE(drawsMerged(scene));
    EXPECT_EQ(log.take(), Texts{"error: [RendererGL] A draw of 2 geometries has 768614336404564650 vertices, which are "
                                "too many to be merged."});
    EXPECT_FALSE(drawsMerged(scene));
    EXPECT_EQ(log.take(), Texts{});
    run<CommandResizeBuffer>(BufferHandle(0), uint64_t{36});
    EXPECT_TRUE(drawsMerged(scene));
    EXPECT_EQ(gl.callsMatching("glMultiDrawElementsBaseVertex"),
              Texts{"glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 3}, GL_UNSIGNED_INT, {null, 12}, 2, {0, 3})"});
}

TEST_F(RendererGL41MergeTest, RangesWithoutIndicesShareTheSequence)
{
    Scene scene = makeScene();
    setRanges(scene, {range(IndexBufferHandle(), 3), range(IndexBufferHandle(), 3, 12)});
    drawsMerged(scene);
    EXPECT_EQ(gl.callsMatching("glMultiDraw"),
              Texts{"glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 3}, GL_UNSIGNED_INT, {null, 12}, 2, {0, 0})"});
    EXPECT_EQ(gl.countOf("glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3)"), 1u);
    EXPECT_EQ(gl.bufferContent(3).size(), 1048576u * 4);
}

TEST_F(RendererGL41MergeTest, OnlyTheFirstMembersShaderBuffersAreSeen)
{
    Scene scene = makeScene();
    scene.properties.shaderBuffers = {makeShaderBuffer("Scene"), makeShaderBuffer("Transform")};
    const DrawPropertiesHandle first = makeMember(scene.properties);
    scene.properties.shaderBuffers = {makeShaderBuffer("Scene"), makeShaderBuffer("Transform")};
    const DrawHandle draw = makeDraw(scene, {first, makeMember(scene.properties)});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.callsMatching("glBindBufferBase("),
              (Texts{"glBindBufferBase(GL_UNIFORM_BUFFER, 0, 3)", "glBindBufferBase(GL_UNIFORM_BUFFER, 1, 4)"}));
}

TEST_F(RendererGL41MergeTest, RemovedAndDestroyedFirstMemberIsDrawnWithItsOwnShaderBuffersUntilTheRebuild)
{
    Scene scene = makeScene();
    scene.properties.shaderBuffers = {makeShaderBuffer("Scene")};
    DrawPropertiesHandle first = makeMember(scene.properties);
    scene.properties.shaderBuffers = {makeShaderBuffer("Scene")};
    const DrawPropertiesHandle second = makeMember(scene.properties);
    const DrawHandle draw = makeDraw(scene, {first, second});
    callsOf<CommandRender>(draw);
    const Texts steady = callsOf<CommandRender>(draw);
    run<CommandRemoveDrawProperties>(draw, first);
    run<CommandDestroyDrawProperties>(first);
    EXPECT_EQ(callsOf<CommandRender>(draw), steady);

    // The number comes back for a member of another draw, whose buffers are not this draw's business.
    scene.properties.shaderBuffers = {makeShaderBuffer("Scene"), makeShaderBuffer("Transform")};
    EXPECT_EQ(makeMember(scene.properties), first);
    EXPECT_EQ(callsOf<CommandRender>(draw), steady);

    BufferProperties properties;
    properties.size = 36;
    run<CommandUpdateBuffer>(BufferHandle(0), properties);
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.callsMatching("glBindBufferBase("), Texts{"glBindBufferBase(GL_UNIFORM_BUFFER, 0, 4)"});
}

TEST_F(RendererGL41MergeTest, NothingIsLeftOfMergingAfterDestroy)
{
    const Scene scene = makeScene();
    run<CommandAddDrawProperties>(scene.draw, makeMember(scene.properties));
    drawCalls(scene);
    renderer->destroy();
    EXPECT_EQ(gl.liveObjects(), Texts{});
}

/// The handles and places in the order of iteration.
std::vector<std::pair<uint32_t, int32_t>> contentOf(const ShaderBufferIndices& indices)
{
    std::vector<std::pair<uint32_t, int32_t>> content;
    for (const auto& [handle, place] : indices)
    {
        content.emplace_back(handle.id, place);
    }
    return content;
}

TEST(ShaderBufferIndicesTest, PlacesFollowTheOrderOfAdditionAndEntriesThatOfHandles)
{
    const std::vector<std::pair<uint32_t, int32_t>> expected = {{2, 1}, {5, 0}, {7, 3}, {9, 2}};
    ShaderBufferIndices added;
    std::vector<ShaderBufferHandle> handles;
    for (const uint32_t id : {5u, 2u, 5u, 9u, 2u, 7u, 9u})
    {
        handles.emplace_back(id);
        added.add(handles.back());
    }
    EXPECT_EQ(contentOf(added), expected);

    ShaderBufferIndices assigned;
    assigned.add(ShaderBufferHandle(1));
    assigned.assign(handles);
    EXPECT_EQ(contentOf(assigned), expected);
    EXPECT_EQ(assigned.get(ShaderBufferHandle(9)), 2);
    EXPECT_EQ(assigned.get(ShaderBufferHandle(3)), 0) << "a handle that was not added";
}

TEST(ShaderBufferIndicesTest, TakesRisingHandlesAndTheInvalidOne)
{
    const std::vector<std::pair<uint32_t, int32_t>> expected = {{0, 0}, {3, 1}, {4, 2}, {0xFFFFFFFF, 3}};
    const std::vector<ShaderBufferHandle> handles = {ShaderBufferHandle(0), ShaderBufferHandle(3),
                                                     ShaderBufferHandle(4), ShaderBufferHandle()};
    ShaderBufferIndices added;
    for (const ShaderBufferHandle& handle : handles)
    {
        added.add(handle);
    }
    EXPECT_EQ(contentOf(added), expected);
    ShaderBufferIndices assigned;
    assigned.assign(handles);
    EXPECT_EQ(contentOf(assigned), expected);
}

TEST_F(RendererGL41MergeTest, DrawsOfEqualRecordsKeepTheScaleOfTheirOwnViewport)
{
    Scene scene = makeScene();
    scene.gfxState.rasterizer.pointSize = 2.0f;
    scene.shaderState.viewport = makeViewport(8, 6, 3.0f);
    const DrawHandle large = makeDraw(scene, {scene.member});
    scene.shaderState.viewport = ViewportHandle();
    scene.gfxState.rasterizer.sizeScale = 4.0f;
    const DrawHandle own = makeDraw(scene, {scene.member});
    const auto sizes = [this](const DrawHandle& draw)
    {
        gl.clear();
        run<CommandRender>(draw);
        return gl.callsMatching("glUniform1f(");
    };
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_EQ(sizes(large), Texts{"glUniform1f(0, 6)"});
        EXPECT_EQ(sizes(own), Texts{"glUniform1f(0, 8)"});
    }
}

TEST_F(RendererGL41MergeTest, ViewsFindTheirPlaceInEachProgramTheyAreDrawnWith)
{
    Scene scene = makeScene();
    drawCalls(scene);
    gl.setReflection({{{"normal", GL_FLOAT_VEC3}, {"position", GL_FLOAT_VEC3}}, {}, {}, {}});
    scene.shaderState.program = makeProgram();
    const DrawHandle other = makeDraw(scene, {scene.member});
    for (int i = 0; i < 2; ++i)
    {
        gl.clear();
        run<CommandRender>(other);
        EXPECT_EQ(gl.callsMatching("glEnableVertexAttribArray("), Texts{"glEnableVertexAttribArray(1)"});
        gl.clear();
        run<CommandRender>(scene.draw);
        EXPECT_EQ(gl.callsMatching("glEnableVertexAttribArray("), Texts{"glEnableVertexAttribArray(0)"});
    }
}

} // namespace
} // namespace renderengine
