// A draw that is sent again is sent from what the first time gathered. Whatever changes below it must reach the next
// frame as it reaches a draw that was never sent before.

#include "RendererFixture.h"

#include <memory>
#include <string>
#include <utility>

namespace renderengine
{
namespace
{

class RendererPlainDrawTest : public RendererGLTest
{
protected:
    void SetUp() override
    {
        RendererGLTest::SetUp();
        scene = makeScene();
        scene.properties.shaderBuffers = {makeShaderBuffer("Transform"), makeShaderBuffer("Material")};
        run<CommandUpdateDrawProperties>(scene.member, scene.properties);
        drawCalls(scene);
        before = drawCalls(scene);
    }

    /// The record that makeScene() made the vertex buffer from.
    VertexBufferProperties positionRecord() const
    {
        VertexBufferProperties properties;
        properties.componentCount = 3;
        properties.buffer = positionBuffer;
        properties.name = "position";
        return properties;
    }

    /// The calls of a draw of the same state and member that was never sent.
    Texts callsOfANewDraw() { return callsOf<CommandRender>(makeDraw(scene, {scene.member})); }

    /// What the next frame sends, which must differ from before and be what a new draw sends.
    Texts callsAfterEdit()
    {
        const Texts calls = drawCalls(scene);
        EXPECT_NE(calls, before);
        EXPECT_EQ(calls, callsOfANewDraw());
        EXPECT_EQ(calls, drawCalls(scene));
        return calls;
    }

    Scene scene;
    /// The first one that makeScene() makes.
    BufferHandle positionBuffer{0};
    Texts before;
};

TEST_F(RendererPlainDrawTest, WithoutAChangeItIsWhatANewDrawSends)
{
    EXPECT_EQ(before, callsOfANewDraw());
    EXPECT_EQ(countOf(before, "glDrawElements"), 1u);
    EXPECT_EQ(countOf(before, "glBindBufferBase"), 2u);
}

TEST_F(RendererPlainDrawTest, AnUpdateOfAVertexBufferReachesTheNextDraw)
{
    VertexBufferProperties properties = positionRecord();
    properties.componentCount = 2;
    properties.offset = 4;
    run<CommandUpdateVertexBuffer>(scene.vertexBuffer, properties);
    EXPECT_EQ(countOf(callsAfterEdit(), "glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, 4)"), 1u);
}

TEST_F(RendererPlainDrawTest, ARenamedVertexBufferFeedsTheOtherAttribute)
{
    VertexBufferProperties properties = positionRecord();
    properties.name = "normal";
    run<CommandUpdateVertexBuffer>(scene.vertexBuffer, properties);
    const Texts calls = callsAfterEdit();
    EXPECT_EQ(countOf(calls, "glEnableVertexAttribArray(1)"), 1u);
    EXPECT_EQ(countOf(calls, "glDisableVertexAttribArray(1)"), 1u);
}

TEST_F(RendererPlainDrawTest, ADestroyedVertexBufferIsNotBoundAndItsSuccessorIs)
{
    run<CommandDestroyVertexBuffer>(scene.vertexBuffer);
    EXPECT_EQ(countOf(callsAfterEdit(), "glVertexAttribPointer"), 0u);
    run<CommandCreateVertexBuffer>(scene.vertexBuffer, positionRecord());
    EXPECT_EQ(drawCalls(scene), before);
}

TEST_F(RendererPlainDrawTest, ADestroyedBufferTakesItsAttributeAway)
{
    run<CommandDestroyBuffer>(positionBuffer);
    EXPECT_EQ(countOf(callsAfterEdit(), "GL_ARRAY_BUFFER"), 0u);
}

TEST_F(RendererPlainDrawTest, ABufferCreatedAnewIsUsedOnceTheViewIsUpdated)
{
    BufferProperties properties;
    properties.size = 36;
    run<CommandCreateBuffer>(positionBuffer, properties);
    EXPECT_EQ(countOf(callsAfterEdit(), "GL_ARRAY_BUFFER"), 0u);
    run<CommandUpdateVertexBuffer>(scene.vertexBuffer, positionRecord());
    EXPECT_EQ(countOf(callsAfterEdit(), "GL_ARRAY_BUFFER"), 1u);
}

TEST_F(RendererPlainDrawTest, AnUpdateOfTheIndexBufferReachesTheNextDraw)
{
    IndexBufferProperties properties;
    properties.dataType = SbDataType::UNSIGNED_SHORT;
    properties.buffer = makeBuffer(6);
    run<CommandUpdateIndexBuffer>(scene.indexBuffer, properties);
    const Texts calls = callsAfterEdit();
    EXPECT_EQ(countOf(calls, "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 5)"), 1u);
    EXPECT_EQ(countOf(calls, "GL_UNSIGNED_SHORT"), 1u);
}

TEST_F(RendererPlainDrawTest, NothingIsDrawnWithoutTheIndexBuffer)
{
    run<CommandDestroyIndexBuffer>(scene.indexBuffer);
    EXPECT_EQ(countOf(callsAfterEdit(), "glDrawElements"), 0u);
}

TEST_F(RendererPlainDrawTest, ARenamedShaderBufferFeedsTheOtherBlock)
{
    ShaderBufferProperties properties;
    properties.kind = 1;
    properties.name = "Scene";
    run<CommandUpdateShaderBuffer>(scene.properties.shaderBuffers[0], properties);
    const Texts calls = callsAfterEdit();
    EXPECT_EQ(countOf(calls, "glBindBufferBase(GL_UNIFORM_BUFFER, 0, 0)"), 1u);
    EXPECT_EQ(countOf(calls, "glUniformBlockBinding(1, 2, 0)"), 1u);
}

TEST_F(RendererPlainDrawTest, ADestroyedShaderBufferLeavesItsBindingPointToTheNextOne)
{
    run<CommandDestroyShaderBuffer>(scene.properties.shaderBuffers[0]);
    const Texts calls = callsAfterEdit();
    EXPECT_EQ(countOf(calls, "glBindBufferBase"), 1u);
    EXPECT_EQ(countOf(calls, "glUniformBlockBinding(1, 1, 0)"), 1u);
}

TEST_F(RendererPlainDrawTest, AViewMadeAfterTheFirstDrawIsUsedByTheNextOne)
{
    scene.properties.vertexBuffers.push_back(renderer->generateVertexBufferHandle());
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    EXPECT_EQ(drawCalls(scene), before);
    VertexBufferProperties properties = positionRecord();
    properties.name = "normal";
    run<CommandCreateVertexBuffer>(scene.properties.vertexBuffers[1], properties);
    EXPECT_EQ(countOf(callsAfterEdit(), "glEnableVertexAttribArray"), 2u);
}

TEST_F(RendererPlainDrawTest, AnotherProgramHasOtherLocations)
{
    gl.setReflection({{{"normal", GL_FLOAT_VEC3}, {"position", GL_FLOAT_VEC3}}, {}, {{"Material"}, {"Transform"}}, {}});
    scene.shaderState.program = makeProgram();
    updateState(scene);
    drawCalls(scene);
    const Texts calls = callsAfterEdit();
    EXPECT_EQ(countOf(calls, "glEnableVertexAttribArray(1)"), 1u);
    EXPECT_EQ(countOf(calls, "glUniformBlockBinding(2, 1, 0)"), 1u);
    EXPECT_EQ(countOf(calls, "glUniformBlockBinding(2, 0, 1)"), 1u);
}

TEST_F(RendererPlainDrawTest, ItsOwnProgramLinkedAgainHasOtherLocations)
{
    gl.setReflection({{{"normal", GL_FLOAT_VEC3}, {"position", GL_FLOAT_VEC3}}, {}, {{"Material"}, {"Transform"}}, {}});
    ShaderStateProperties shaderState;
    static_cast<ShaderStateCoreProperties&>(shaderState) = scene.shaderState;
    run<CommandBeginTransformFeedback>(TransformFeedbackProperties(), shaderState);
    run<CommandEndTransformFeedback>();
    const Texts calls = callsAfterEdit();
    EXPECT_EQ(countOf(calls, "glEnableVertexAttribArray(1)"), 1u);
    EXPECT_EQ(countOf(calls, "glUniformBlockBinding(1, 1, 0)"), 1u);
}

TEST_F(RendererPlainDrawTest, RangesFollowTheirOwnIndexBuffers)
{
    scene.properties.ranges.push_back(scene.properties.ranges[0]);
    scene.properties.ranges[1].indexBuffer = makeIndexBuffer(3, SbDataType::UNSIGNED_SHORT);
    scene.properties.ranges[1].instanceCount = 2;
    scene.properties.ranges[1].primitiveRestart = true;
    scene.properties.ranges[1].primitiveRestartValue = 9;
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    drawCalls(scene);
    const Texts both = drawCalls(scene);
    EXPECT_EQ(countOf(both, "glDrawElements"), 2u);
    EXPECT_EQ(countOf(both, "glDisable(GL_PRIMITIVE_RESTART)"), 1u) << "left on by the draw before";
    EXPECT_EQ(countOf(both, "glPrimitiveRestartIndex(9)"), 1u);
    run<CommandDestroyIndexBuffer>(scene.properties.ranges[0].indexBuffer);
    const Texts one = drawCalls(scene);
    EXPECT_EQ(countOf(one, "glDrawElements"), 1u);
    EXPECT_EQ(countOf(one, "GL_UNSIGNED_SHORT"), 1u);
}

TEST_F(RendererPlainDrawTest, AnUpdateOfTheMemberReachesTheNextDraw)
{
    scene.properties.ranges[0].count = 6;
    scene.properties.ranges[0].indexOffset = 8;
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    EXPECT_EQ(countOf(callsAfterEdit(), "(GL_TRIANGLES, 6, GL_UNSIGNED_INT, 8, 1, 0)"), 1u);
}

TEST_F(RendererPlainDrawTest, ConstantAttributesFollowTheMember)
{
    OverallAttribute normal;
    normal.name = "normal";
    normal.dataType = SbDataType::FLOAT;
    scene.properties.overallAttributes = {normal};
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    EXPECT_EQ(countOf(callsAfterEdit(), "glVertexAttrib4f"), 1u);
    scene.properties.overallAttributes.clear();
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    EXPECT_EQ(drawCalls(scene), before);
}

TEST_F(RendererPlainDrawTest, NewDataOfABufferChangesNoCall)
{
    BufferProperties properties;
    properties.size = 72;
    run<CommandUpdateBuffer>(positionBuffer, properties);
    run<CommandResizeBuffer>(positionBuffer, 144u);
    EXPECT_EQ(drawCalls(scene), before);
}

TEST_F(RendererPlainDrawTest, AMergedDrawIsDrawnPlainlyAgainWithOneMember)
{
    const DrawPropertiesHandle second = makeMember(scene.properties);
    run<CommandAddDrawProperties>(scene.draw, second);
    drawCalls(scene);
    EXPECT_EQ(countOf(drawCalls(scene), "glMultiDrawElementsBaseVertex"), 1u);
    run<CommandDestroyDrawProperties>(second);
    drawCalls(scene);
    EXPECT_EQ(drawCalls(scene), before);
}

TEST_F(RendererPlainDrawTest, AnotherRendererOnTheThreadChangesNothing)
{
    std::unique_ptr<RendererGL41> other = std::move(renderer);
    start<RendererGL41>();
    const Scene otherScene = makeScene();
    EXPECT_EQ(otherScene.draw, scene.draw); // each renderer numbers its own
    drawCalls(otherScene);
    const Texts otherBefore = drawCalls(otherScene);

    std::swap(renderer, other);
    EXPECT_EQ(drawCalls(scene), before);
    std::swap(renderer, other);
    run<CommandDestroyVertexBuffer>(otherScene.vertexBuffer);
    EXPECT_EQ(countOf(drawCalls(otherScene), "glVertexAttribPointer"), 0u);

    std::swap(renderer, other);
    EXPECT_EQ(drawCalls(scene), before);
    VertexBufferProperties properties = positionRecord();
    properties.componentCount = 2;
    run<CommandUpdateVertexBuffer>(scene.vertexBuffer, properties);
    std::swap(renderer, other);
    run<CommandCreateVertexBuffer>(otherScene.vertexBuffer, positionRecord());
    EXPECT_EQ(drawCalls(otherScene), otherBefore);

    std::swap(renderer, other);
    EXPECT_EQ(countOf(callsAfterEdit(), "glVertexAttribPointer(0, 2, "), 1u);
}

} // namespace
} // namespace renderengine
