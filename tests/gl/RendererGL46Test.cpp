#include "RendererGL46Fixture.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{
namespace
{

TEST_F(RendererGL46Test, BeginAsksForTheBlockSizeAndTheVendor)
{
    renderer->begin();
    const Texts calls = gl.takeCalls();
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(Texts(calls.end() - 2, calls.end()),
              (Texts{"glGetIntegerv(GL_MAX_UNIFORM_BLOCK_SIZE, <pointer>)", "glGetString(GL_VENDOR)"}));
}

TEST_F(RendererGL46Test, MembersShareMergedBuffersWithAnIndirection)
{
    beginWithBlockSize(16384);
    Scene scene = makeScene();
    const ShaderBufferHandle red = block("Material", 1);
    const ShaderBufferHandle blue = block("Material", 2);
    const ShaderBufferHandle here = block("Transform", 3);
    const DrawHandle draw = makeMergedDraw(scene, {{here, blue}, {here, red}, {here, blue}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glUniform1i(1, 1)"), 1u);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 1u);

    // Behind the first member's two buffers: transforms, then materials, indirection before content.
    EXPECT_EQ(boundContent("GL_UNIFORM_BUFFER", 2), (std::vector<uint32_t>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(boundContent("GL_UNIFORM_BUFFER", 3), std::vector<uint32_t>(16, 3));
    EXPECT_EQ(boundContent("GL_UNIFORM_BUFFER", 4), (std::vector<uint32_t>{0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}));
    std::vector<uint32_t> materials(16, 2);
    materials.insert(materials.end(), 16, 1);
    EXPECT_EQ(boundContent("GL_UNIFORM_BUFFER", 5), materials);
    EXPECT_EQ(gl.countOf("glBindBufferBase("), 6u);
}

TEST_F(RendererGL46Test, MergedBlocksAreConnectedByTheirNames)
{
    beginWithBlockSize(16384);
    Scene scene = makeScene();
    gl.setReflection({{{"position", GL_FLOAT_VEC3}},
                      {},
                      {{"TransformIndirectBuffer"}, {"TransformMergedBuffer"}, {"MaterialMergedBuffer"}},
                      {}});
    scene.shaderState.program = makeProgram();
    const DrawHandle draw = makeMergedDraw(
        scene, {{block("Transform", 1), block("Material", 2)}, {block("Transform", 3), block("Material", 4)}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(
        gl.callsMatching("glUniformBlockBinding("),
        (Texts{"glUniformBlockBinding(2, 0, 2)", "glUniformBlockBinding(2, 1, 3)", "glUniformBlockBinding(2, 2, 5)"}));
}

TEST_F(RendererGL46Test, StorageBuffersHaveOneValueAMember)
{
    SoPreferences::setBool("KVR_SHADER_BUFFERS_MERGING_USE_UBO", false);
    restart();
    Scene scene = makeScene();
    const DrawHandle draw = makeMergedDraw(
        scene, {{block("Transform", 1), block("Material", 2)}, {block("Transform", 3), block("Material", 4)}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(boundContent("GL_SHADER_STORAGE_BUFFER", 2), (std::vector<uint32_t>{0, 1}));
    EXPECT_EQ(gl.countOf("glBindBufferBase(GL_SHADER_STORAGE_BUFFER"), 4u);
}

TEST_F(RendererGL46Test, OneVendorGetsStorageBuffersAndNoSplit)
{
    gl.answerString(GL_VENDOR, "ATI Technologies Inc.");
    beginWithBlockSize(16);
    Scene scene = makeScene();
    const DrawHandle draw = makeMergedDraw(
        scene, {{block("Transform", 1), block("Material", 2)}, {block("Transform", 3), block("Material", 4)}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 1u);
    EXPECT_EQ(gl.countOf("glBindBufferBase(GL_SHADER_STORAGE_BUFFER"), 4u);
}

TEST_F(RendererGL46Test, WithoutTheMergeOnlyTheFirstMembersBuffersAreBound)
{
    SoPreferences::setBool("KVR_ENABLE_SHADER_BUFFERS_MERGING", false);
    restart();
    beginWithBlockSize(16);
    Scene scene = makeScene();
    const DrawHandle draw = makeMergedDraw(
        scene, {{block("Transform", 1), block("Material", 2)}, {block("Transform", 3), block("Material", 4)}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glBindBufferBase("), 2u);
    EXPECT_EQ(gl.countOf("glUniform1i(1, 0)"), 1u);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 1u);
}

TEST_F(RendererGL46Test, AsManyMembersAsFitStayInOneBatch)
{
    beginWithBlockSize(128); // eight entries of 16 bytes, two blocks of 64
    Scene scene = makeScene();
    const ShaderBufferHandle transform = block("Transform", 1);
    const ShaderBufferHandle material = block("Material", 2);
    std::vector<std::pair<ShaderBufferHandle, ShaderBufferHandle>> members(8, {transform, material});
    const DrawHandle fits = makeMergedDraw(scene, members);
    gl.clear();
    run<CommandRender>(fits);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 1u);

    members.emplace_back(transform, material);
    const DrawHandle split = makeMergedDraw(scene, members);
    gl.clear();
    run<CommandRender>(split);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 2u);
    // The last member stands alone: nothing is merged for it.
    EXPECT_EQ(gl.callsMatching("glUniform1i(1"), (Texts{"glUniform1i(1, 1)", "glUniform1i(1, 0)"}));

    members.emplace_back(transform, material);
    const DrawHandle splitInTwo = makeMergedDraw(scene, members);
    gl.clear();
    run<CommandRender>(splitInTwo);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 2u);
    EXPECT_EQ(gl.callsMatching("glUniform1i(1"), (Texts{"glUniform1i(1, 1)", "glUniform1i(1, 1)"}));
}

TEST_F(RendererGL46Test, BlocksThatExceedAUniformBlockLeaveEachMemberInABatchOfItsOwn)
{
    beginWithBlockSize(32);
    Scene scene = makeScene();
    const DrawHandle draw = makeMergedDraw(
        scene, {{block("Transform", 1), block("Material", 2)}, {block("Transform", 3), block("Material", 4)}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.callsMatching("glUniform1i(1"), (Texts{"glUniform1i(1, 0)", "glUniform1i(1, 0)"}));
    EXPECT_EQ(gl.callsMatching("glMultiDraw"),
              (Texts(2, "glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3}, GL_UNSIGNED_INT, {null}, 1, {0})")));
}

TEST_F(RendererGL46Test, EachBatchNumbersItsOwnMembersAndBlocks)
{
    beginWithBlockSize(128); // two blocks of 64
    Scene scene = makeScene();
    const ShaderBufferHandle material = block("Material", 9);
    const DrawHandle draw = makeMergedDraw(scene, {{block("Transform", 1), material},
                                                   {block("Transform", 2), material},
                                                   {block("Transform", 3), material},
                                                   {block("Transform", 4), material}});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 2u);
    EXPECT_EQ(boundContent("GL_UNIFORM_BUFFER", 2), (std::vector<uint32_t>{0, 0, 0, 0, 1, 0, 0, 0}));
    std::vector<uint32_t> transforms(16, 3);
    transforms.insert(transforms.end(), 16, 4);
    EXPECT_EQ(boundContent("GL_UNIFORM_BUFFER", 3), transforms);
}

TEST_F(RendererGL46Test, MembersWithoutThoseBuffersAreMergedWithoutThem)
{
    beginWithBlockSize(16);
    const Scene scene = makeScene();
    const DrawHandle draw = makeDraw(scene, {scene.member, makeMember(scene.properties), makeMember(scene.properties)});
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(gl.countOf("glMultiDrawElementsBaseVertex("), 1u);
    EXPECT_EQ(gl.countOf("glBindBufferBase("), 0u);
    EXPECT_EQ(gl.countOf("glUniform1i(1, 0)"), 1u);
}

TEST_F(RendererGL46Test, ChangeOfASourceRebuildsAndLeavesNothingBehind)
{
    beginWithBlockSize(16384);
    Scene scene = makeScene();
    const ShaderBufferHandle transform = block("Transform", 1);
    const DrawHandle draw =
        makeMergedDraw(scene, {{transform, block("Material", 2)}, {transform, block("Material", 3)}});
    run<CommandRender>(draw);
    const size_t live = gl.live("Buffer");
    const size_t made = gl.made("Buffer");
    run<CommandRender>(draw);
    EXPECT_EQ(gl.made("Buffer"), made);
    const std::vector<uint32_t> changed(16, 8);
    BufferProperties properties;
    properties.size = 64;
    properties.data = changed.data();
    run<CommandUpdateBuffer>(BufferHandle(2), properties);
    gl.clear();
    run<CommandRender>(draw);
    EXPECT_EQ(boundContent("GL_UNIFORM_BUFFER", 3), changed);
    EXPECT_EQ(gl.live("Buffer"), live);
    EXPECT_EQ(gl.made("Buffer"), made + 7) << "positions, draw indices, indices, two times two for the slots";
    run<CommandDestroyDraw>(draw);
    EXPECT_EQ(gl.live("Buffer"), 5u) << "those of the client";
}

TEST_F(RendererGL46Test, ImagesAreBoundOnceAndNamedByTheirUnit)
{
    Scene scene = makeScene();
    scene.shaderState.textureImages = {makeImage("color", 3), TextureImageHandle()};
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.callsMatching("glBindImageTexture("),
              Texts{"glBindImageTexture(3, 2, 1, GL_FALSE, 2, GL_WRITE_ONLY, GL_RGBA8)"});
    EXPECT_EQ(gl.countOf("glUniform1i(2, 3)"), 1u);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glBindImageTexture("), 0u);
    EXPECT_EQ(gl.countOf("glUniform1i(2, 3)"), 0u);

    // An update makes the image unbound, nothing is uploaded.
    TextureImageProperties properties;
    properties.unit = 3;
    properties.name = "color";
    EXPECT_EQ(callsOf<CommandUpdateTextureImage>(scene.shaderState.textureImages[0], properties), Texts{});
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.callsMatching("glBindImageTexture("),
              Texts{"glBindImageTexture(3, 0, 0, GL_FALSE, 0, GL_READ_ONLY, GL_R8)"});
}

TEST_F(RendererGL46Test, ImagesAreNamedAgainAfterTheProgramWasLinkedAgain)
{
    Scene scene = makeScene();
    scene.shaderState.textureImages = {makeImage("color", 3)};
    updateState(scene);
    run<CommandRender>(scene.draw);
    ShaderStateProperties shaderState;
    static_cast<ShaderStateCoreProperties&>(shaderState) = scene.shaderState;
    run<CommandBeginTransformFeedback>(TransformFeedbackProperties(), shaderState);
    run<CommandEndTransformFeedback>();
    const Texts calls = drawCalls(scene);
    EXPECT_EQ(countOf(calls, "glUniform1i(2, 3)"), 1u) << "linking sets a uniform back to 0";
    EXPECT_EQ(countOf(calls, "glBindImageTexture("), 0u) << "the image itself is still bound";
    EXPECT_EQ(countOf(drawCalls(scene), "glUniform1i(2, 3)"), 0u);
}

TEST_F(RendererGL46Test, UnitsThatFallAwayAreUnboundAndUnitsAboveSevenSkipped)
{
    Scene scene = makeScene();
    scene.shaderState.textureImages = {makeImage("color", 3), makeImage("other", 8), makeImage("other", 0)};
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glBindImageTexture("), 2u);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glBindImageTexture("), 0u);
    scene.shaderState.textureImages = {scene.shaderState.textureImages[0]};
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.callsMatching("glBindImageTexture("),
              Texts{"glBindImageTexture(0, 0, 0, GL_FALSE, 0, GL_READ_ONLY, GL_R8)"});
}

TEST_F(RendererGL46Test, OlderRendererIgnoresImages)
{
    start<RendererGL41>();
    Scene scene = makeScene();
    scene.shaderState.textureImages = {makeImage("color", 3)};
    updateState(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glBindImageTexture("), 0u);
}

} // namespace
} // namespace renderengine
