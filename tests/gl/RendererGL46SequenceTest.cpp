// Whole sequences of calls of merged shader buffers and texture images.

#include "RendererGL41TestAccess.h"
#include "RendererGL46Fixture.h"

#include <kavelor/SoPreferences.h>

#include <algorithm>

namespace renderengine
{
namespace
{

using RendererGL46SequenceTest = RendererGL46Test;

Texts createCalls(int name, int size, const char* data, const char* usage = "GL_STATIC_DRAW")
{
    const std::string number = std::to_string(name);
    return {"glGenBuffers(1, -> " + number + ")", "glBindBuffer(GL_ARRAY_BUFFER, " + number + ")",
            "glBufferData(GL_ARRAY_BUFFER, " + std::to_string(size) + ", " + data + ", " + usage + ")",
            "glBindBuffer(GL_ARRAY_BUFFER, 0)"};
}

Texts copyCalls(int source, int destination, int offset, int size)
{
    return {"glBindBuffer(GL_COPY_WRITE_BUFFER, " + std::to_string(destination) + ")",
            "glBindBuffer(GL_COPY_READ_BUFFER, " + std::to_string(source) + ")",
            "glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, <pointer>)",
            "glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 0, " + std::to_string(offset) + ", " +
                std::to_string(size) + ")",
            "glBindBuffer(GL_COPY_WRITE_BUFFER, 0)",
            "glBindBuffer(GL_COPY_READ_BUFFER, 0)"};
}

Texts releaseCalls(int name)
{
    return {"glIsBuffer(" + std::to_string(name) + ")", "glDeleteBuffers(1, {" + std::to_string(name) + "})"};
}

/// The scene's own buffers are 1 and 2; two transforms are 3 and 4, two materials 5 and 6.
class MergedPairTest : public RendererGL46Test
{
protected:
    void SetUp() override
    {
        RendererGL46Test::SetUp();
        beginWithBlockSize(16384);
        scene = makeScene();
        firstTransform = block("Transform", 1);
        const ShaderBufferHandle secondTransform = block("Transform", 2);
        const ShaderBufferHandle firstMaterial = block("Material", 3);
        draw = makeMergedDraw(scene, {{firstTransform, firstMaterial}, {secondTransform, block("Material", 4)}});
    }

    /// What merging itself sends: from the first new buffer to the buffers that the draw binds.
    Texts mergingCalls()
    {
        gl.clear();
        run<CommandRender>(draw);
        const Texts calls = gl.takeCalls();
        const auto first = std::find_if(calls.begin(), calls.end(),
                                        [](const std::string& call)
                                        { return call.find("glIsBuffer(") == 0 || call.find("glGenBuffers(") == 0; });
        const auto last = std::find_if(first, calls.end(),
                                       [](const std::string& call) { return call.find("glBindBufferBase(") == 0; });
        return Texts(first, last);
    }

    static Texts blocksOf(int name)
    {
        return join({createCalls(name, 32, "<pointer>", "GL_STATIC_COPY"), // transforms: two entries of 16 bytes
                     createCalls(name + 1, 128, "null"), copyCalls(3, name + 1, 0, 64), copyCalls(4, name + 1, 64, 64),
                     createCalls(name + 2, 32, "<pointer>", "GL_STATIC_COPY"), // materials
                     createCalls(name + 3, 128, "null"), copyCalls(5, name + 3, 0, 64),
                     copyCalls(6, name + 3, 64, 64)});
    }

    static Texts verticesOf(int name)
    {
        return join({createCalls(name, 72, "null"), copyCalls(1, name, 0, 36), copyCalls(1, name, 36, 36),
                     createCalls(name + 1, 24, "<pointer>"), // draw indices
                     createCalls(name + 2, 24, "null"), copyCalls(2, name + 2, 0, 12), copyCalls(2, name + 2, 12, 12)});
    }

    Scene scene;
    ShaderBufferHandle firstTransform;
    DrawHandle draw;
};

TEST_F(MergedPairTest, VerticesThenIndicesThenTransformsThenMaterialsAreMerged)
{
    EXPECT_EQ(mergingCalls(), join({verticesOf(7), blocksOf(10)}));
}

TEST_F(MergedPairTest, RebuildReleasesInOrderOfCreationBeforeItBuilds)
{
    mergingCalls();
    ShaderBufferProperties properties;
    properties.name = "Transform";
    properties.buffer = BufferHandle(2);
    run<CommandUpdateShaderBuffer>(firstTransform, properties);
    Texts released;
    for (int name = 7; name <= 13; ++name)
    {
        released = join({released, releaseCalls(name)});
    }
    EXPECT_EQ(mergingCalls(), join({released, verticesOf(14), blocksOf(17)}));
}

TEST_F(MergedPairTest, BlocksMergedAgainAloneAreReleasedFromTheLastToTheFirst)
{
    mergingCalls();
    gl.clear();
    RendererGL41TestAccess::mergeShaderBuffers(*renderer, draw, false);
    EXPECT_EQ(gl.takeCalls(), Texts{}) << "nothing is dirty";
    RendererGL41TestAccess::mergeShaderBuffers(*renderer, draw, true);
    EXPECT_EQ(gl.takeCalls(),
              join({releaseCalls(13), releaseCalls(12), releaseCalls(11), releaseCalls(10), blocksOf(14)}));
    EXPECT_EQ(gl.live("Buffer"), 13u);
}

TEST_F(MergedPairTest, SteadyDrawBindsTheFirstMembersBlocksAndThenTheMergedOnes)
{
    mergingCalls();
    EXPECT_EQ(callsOf<CommandRender>(draw),
              (Texts{"glUniform1f(0, 1)",
                     "glBindBufferBase(GL_UNIFORM_BUFFER, 0, 3)",
                     "glUniformBlockBinding(1, 0, 0)",
                     "glBindBufferBase(GL_UNIFORM_BUFFER, 1, 5)",
                     "glUniformBlockBinding(1, 1, 1)",
                     "glBindBufferBase(GL_UNIFORM_BUFFER, 2, 10)",
                     "glBindBufferBase(GL_UNIFORM_BUFFER, 3, 11)",
                     "glBindBufferBase(GL_UNIFORM_BUFFER, 4, 12)",
                     "glBindBufferBase(GL_UNIFORM_BUFFER, 5, 13)",
                     "glUniform1i(1, 1)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 7)",
                     "glEnableVertexAttribArray(0)",
                     "glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, null)",
                     "glVertexAttribDivisor(0, 0)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 8)",
                     "glEnableVertexAttribArray(2)",
                     "glVertexAttribPointer(2, 1, GL_FLOAT, GL_FALSE, 0, null)",
                     "glVertexAttribDivisor(2, 0)",
                     "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 9)",
                     "glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 3}, GL_UNSIGNED_INT, {null, 12}, 2, {0, 3})",
                     "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)",
                     "glDisableVertexAttribArray(0)",
                     "glDisableVertexAttribArray(2)"}));
}

TEST_F(RendererGL46SequenceTest, DrawIndicesRestartInTheSecondBatchAndOneSourceRebuildsBoth)
{
    beginWithBlockSize(128); // two blocks of 64
    Scene scene = makeScene();
    const ShaderBufferHandle material = block("Material", 9);
    const DrawHandle draw = makeMergedDraw(scene, {{block("Transform", 1), material},
                                                   {block("Transform", 2), material},
                                                   {block("Transform", 3), material},
                                                   {block("Transform", 4), material}});
    // Buffers 1 to 7 are the sources; each batch makes seven, the second of which holds its draw indices.
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glGenBuffers("), 14u);
    EXPECT_EQ(contentOf(9), (std::vector<uint32_t>{0, 0, 0, 1, 1, 1}));
    // Vertices and indices of both batches are merged before the blocks of the first.
    EXPECT_EQ(contentOf(12), (std::vector<uint32_t>{0, 0, 0, 1, 1, 1}));

    // Only the first batch was made from this transform.
    const std::vector<uint32_t> changed(16, 8);
    BufferProperties properties;
    properties.size = 64;
    properties.data = changed.data();
    run<CommandUpdateBuffer>(BufferHandle(3), properties);
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glDeleteBuffers("), 14u);
    EXPECT_EQ(gl.countOf("glGenBuffers("), 14u);

    // Nor do the vertices of one geometry stay with its batch.
    properties.size = 36;
    properties.data = nullptr;
    run<CommandUpdateBuffer>(BufferHandle(0), properties);
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glDeleteBuffers("), 14u);
    EXPECT_EQ(gl.countOf("glGenBuffers("), 14u);
}

TEST_F(RendererGL46SequenceTest, LimitsOfTheFirstDrawStandForAllDraws)
{
    beginWithBlockSize(128);
    Scene scene = makeScene();
    const auto make = [&](uint64_t size)
    {
        const ShaderBufferHandle transform = makeShaderBuffer("Transform", 1, size);
        const ShaderBufferHandle other = makeShaderBuffer("Transform", 1, size);
        const ShaderBufferHandle material = makeShaderBuffer("Material", 1, 16);
        return makeMergedDraw(scene, {{transform, material}, {other, material}, {transform, material}});
    };
    const DrawHandle small = make(32); // four transforms a batch
    gl.clear();
    run<CommandRender>(small);
    EXPECT_EQ(gl.countOf("glMultiDraw"), 1u);
    const DrawHandle large = make(128); // two would not fit
    gl.clear();
    run<CommandRender>(large);
    EXPECT_EQ(gl.countOf("glMultiDraw"), 1u);
}

TEST_F(RendererGL46SequenceTest, OneVendorsStorageBuffersNeverTurnBackIntoUniformBuffers)
{
    gl.answerString(GL_VENDOR, "ATI Technologies Inc.");
    renderer->begin();
    gl.answerString(GL_VENDOR, "Other");
    renderer->begin();
    Scene scene = makeScene();
    const ShaderBufferHandle material = block("Material", 2);
    const DrawHandle draw =
        makeMergedDraw(scene, {{block("Transform", 1), material}, {block("Transform", 3), material}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glBindBufferBase(GL_SHADER_STORAGE_BUFFER"), 4u);
    EXPECT_EQ(boundContent("GL_SHADER_STORAGE_BUFFER", 2), (std::vector<uint32_t>{0, 1}));
    EXPECT_EQ(boundContent("GL_SHADER_STORAGE_BUFFER", 4), (std::vector<uint32_t>{0, 0}));
}

TEST_F(RendererGL46SequenceTest, OnlyTheStartOfTheVendorCounts)
{
    gl.answerString(GL_VENDOR, "Not ATI");
    beginWithBlockSize(16384);
    Scene scene = makeScene();
    const ShaderBufferHandle material = block("Material", 2);
    const DrawHandle draw =
        makeMergedDraw(scene, {{block("Transform", 1), material}, {block("Transform", 3), material}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glBindBufferBase(GL_SHADER_STORAGE_BUFFER"), 0u);
}

/// Makes its renderer itself, with the merge off.
class RendererWithoutMergeTest : public RendererGLTest
{
protected:
    void SetUp() override {}
};

TEST_F(RendererWithoutMergeTest, TheKindOfMergedBuffersIsNotAskedFor)
{
    SoPreferences::setBool("KVR_ENABLE_SHADER_BUFFERS_MERGING", false);
    start<RendererGL46>();
    for (const SoPreferences::AskedKey& key : SoPreferences::getAskedKeys())
    {
        EXPECT_NE(key.name.toStdString(), "KVR_SHADER_BUFFERS_MERGING_USE_UBO");
    }
}

TEST_F(RendererGL46SequenceTest, ImagesAreBoundBehindTheProgramAndTheClipPlanes)
{
    Scene scene = makeScene();
    run<CommandRender>(scene.draw);
    scene.shaderState.textureImages = {makeImage("color", 2), makeImage("unknown", 5, 0)};
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    const Texts images(gl.calls().begin(), gl.calls().begin() + 4);
    EXPECT_EQ(images, (Texts{"glBindImageTexture(2, 2, 1, GL_FALSE, 2, GL_WRITE_ONLY, GL_RGBA8)", "glUniform1i(2, 2)",
                             "glBindImageTexture(5, 3, 1, GL_FALSE, 2, GL_READ_ONLY, GL_RGBA8)", "glUniform1f(0, 1)"}));

    // Another image on one of the units: only it is bound, but all units are told again, and the other falls away.
    scene.shaderState.textureImages = {makeImage("color", 2, 2)};
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    const Texts changed(gl.calls().begin(), gl.calls().begin() + 4);
    EXPECT_EQ(changed, (Texts{"glBindImageTexture(2, 4, 1, GL_FALSE, 2, GL_READ_WRITE, GL_RGBA8)", "glUniform1i(2, 2)",
                              "glBindImageTexture(5, 0, 0, GL_FALSE, 0, GL_READ_ONLY, GL_R8)", "glUniform1f(0, 1)"}));
}

TEST_F(RendererGL46SequenceTest, NoProgramMeansNoImages)
{
    Scene scene = makeScene();
    scene.shaderState.textureImages = {makeImage("color", 2)};
    scene.shaderState.program = ShaderProgramHandle();
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glBindImageTexture("), 0u);
    EXPECT_EQ(gl.calls().back(), "glUseProgram(0)");
}

} // namespace
} // namespace renderengine
