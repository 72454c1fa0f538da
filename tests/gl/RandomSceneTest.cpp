// Random scenes on the recording table: what merged draws read is what their ranges read one by one.

#include "RandomScene.h"
#include "RecordedDraws.h"
#include "RendererFixture.h"
#include "ScenePlayer.h"

#include <kavelor/SoPreferences.h>

#include <array>
#include <set>

namespace renderengine
{
namespace
{

constexpr uint32_t sceneCount = 96;

class RandomSceneTest : public RendererGLTest
{
protected:
    template <class Renderer> void restart(int64_t uniformBlockSize = 16384)
    {
        start<Renderer>();
        gl.answer(GL_MAX_UNIFORM_BLOCK_SIZE, uniformBlockSize);
        renderer->begin();
        gl.clear();
    }

    ShaderStateCoreProperties makeState()
    {
        ShaderStateCoreProperties state;
        state.program = makeProgram();
        return state;
    }

    /// Plays each draw of the scene both ways and returns how many calls with several draws that took.
    size_t compare(RecordedDraws& draws, const RandomScene& scene, ScenePlayer& player)
    {
        size_t multiDrawCount = 0;
        for (size_t i = 0; i < scene.draws.size(); ++i)
        {
            draws.take();
            player.drawRangeByRange(i);
            const RecordedDraws::Runs separate = draws.take();
            EXPECT_EQ(draws.getMultiDrawCount(), 0u);
            player.drawMerged(i);
            const RecordedDraws::Runs merged = draws.take();
            multiDrawCount += draws.getMultiDrawCount();
            EXPECT_FALSE(separate.empty());
            EXPECT_TRUE(merged == separate) << "draw " << i;
        }
        EXPECT_FALSE(draws.hasReadOutside());
        return multiDrawCount;
    }

    /// All scenes, each also a second time and after changes of its buffers.
    template <class Renderer>
    size_t compareAll(MemberBlocks blocks, uint32_t blockKind = 1, int64_t uniformBlockSize = 16384)
    {
        restart<Renderer>(uniformBlockSize);
        RecordedDraws draws(gl);
        const ShaderStateCoreProperties state = makeState();
        size_t multiDrawCount = 0;
        for (uint32_t seed = 0; seed < sceneCount; ++seed)
        {
            SCOPED_TRACE("seed " + std::to_string(seed));
            const RandomScene scene = makeRandomScene(seed, blocks);
            RandomNumbers random(seed + 1000);
            const size_t live = gl.live("Buffer");
            {
                ScenePlayer player(*renderer, scene, state, blockKind);
                multiDrawCount += compare(draws, scene, player);
                compare(draws, scene, player);
                change(random, scene, player);
                compare(draws, scene, player);
            }
            // The sequence of indices stays once it was needed.
            EXPECT_LE(gl.live("Buffer"), live + 1);
        }
        return multiDrawCount;
    }

    static void change(RandomNumbers& random, const RandomScene& scene, ScenePlayer& player)
    {
        const size_t changed = random.below(static_cast<uint32_t>(scene.vertexBuffers.size()));
        const RandomScene::VertexBuffer& buffer = scene.vertexBuffers[changed];
        const size_t elementSize = size_t{buffer.dataType.getSize()} * buffer.componentCount;
        player.changeVertices(changed, makeRandomVertices(random, buffer, buffer.data.size() / elementSize));
        player.changeTransform(random.below(static_cast<uint32_t>(scene.transforms.size())), {0.5f, 0.5f, 0.1f, 0.2f});
    }
};

TEST_F(RandomSceneTest, HaveAllThatMergingMeets)
{
    std::set<uint32_t> primitives;
    std::set<uint32_t> indexTypes;
    std::set<std::string> kinds;
    for (uint32_t seed = 0; seed < sceneCount; ++seed)
    {
        const RandomScene scene = makeRandomScene(seed, MemberBlocks::Own);
        for (const RandomScene::Draw& draw : scene.draws)
        {
            kinds.insert(draw.members.size() > 1 ? "several members" : "one member");
            kinds.insert(draw.maximum ? "several primitive types" : "one primitive type");
            for (const RandomScene::Member& member : draw.members)
            {
                kinds.insert(member.overallAttributes.empty() ? "no constants" : "constants");
                kinds.insert(member.vertexBuffers == draw.members.front().vertexBuffers ? "shared" : "own buffers");
                for (const RandomScene::Range& range : member.ranges)
                {
                    primitives.insert(range.properties.primitive);
                    kinds.insert(range.indexBuffer ? "indices" : "sequence");
                    kinds.insert(range.properties.primitiveRestart ? "restart" : "no restart");
                    kinds.insert(range.properties.instanceCount > 1 ? "instances" : "no instances");
                    kinds.insert(range.properties.count == 0 ? "empty range" : "range");
                    if (range.indexBuffer)
                    {
                        indexTypes.insert(scene.indexBuffers[*range.indexBuffer].dataType.getType());
                    }
                }
            }
        }
    }
    EXPECT_EQ(primitives, (std::set<uint32_t>{0, 1, 2, 3, 4, 5, 6, 8, 9, 10})) << "all but patches";
    EXPECT_EQ(indexTypes, (std::set<uint32_t>{0, 1, 2}));
    EXPECT_EQ(kinds.size(), 16u);
}

TEST_F(RandomSceneTest, SameSeedGivesTheSameScene)
{
    const RandomScene first = makeRandomScene(7, MemberBlocks::Own);
    const RandomScene second = makeRandomScene(7, MemberBlocks::Own);
    ASSERT_EQ(first.vertexBuffers.size(), second.vertexBuffers.size());
    for (size_t i = 0; i < first.vertexBuffers.size(); ++i)
    {
        EXPECT_EQ(first.vertexBuffers[i].data, second.vertexBuffers[i].data);
    }
    EXPECT_NE(makeRandomScene(8, MemberBlocks::Own).vertexBuffers[0].data, first.vertexBuffers[0].data);
}

/// The reader of calls itself: what it takes for the same, and what not.
TEST_F(RandomSceneTest, ReaderSeesWhichVerticesADrawReads)
{
    RecordedDraws draws(gl);
    const std::array<float, 4> positions = {{10, 11, 12, 13}};
    const std::array<uint16_t, 4> indices = {{0, 2, 9, 1}};
    std::array<GLuint, 2> names{};
    glGenBuffers(2, names.data());
    glBindBuffer(GL_ARRAY_BUFFER, names[0]);
    glBufferData(GL_ARRAY_BUFFER, sizeof(positions), positions.data(), GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 1, GL_FLOAT, GL_FALSE, 0, nullptr);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, names[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof(indices), indices.data(), GL_STATIC_DRAW);
    const auto read = [&](GLint baseVertex)
    {
        const GLsizei count = 4;
        const void* const offset = nullptr;
        glMultiDrawElementsBaseVertex(GL_LINES, &count, GL_UNSIGNED_SHORT, &offset, 1, &baseVertex);
        return draws.take();
    };
    glEnable(GL_PRIMITIVE_RESTART);
    glPrimitiveRestartIndex(9);
    const RecordedDraws::Runs runs = read(0);
    ASSERT_EQ(runs.at("GL_LINES").size(), 2u) << "two runs about the restart";
    EXPECT_EQ(runs.at("GL_LINES")[0][1].substr(0, 3), "12 ");
    EXPECT_EQ(runs.at("GL_LINES")[1][0].substr(0, 3), "11 ");
    EXPECT_EQ(read(1).at("GL_LINES")[0][1].substr(0, 3), "13 ");
    EXPECT_NE(read(1), runs);
    const std::array<float, 2> tint = {{7, 8}};
    glVertexAttrib2fv(2, tint.data());
    EXPECT_NE(read(0), runs) << "another constant";
    glDeleteBuffers(2, names.data());
}

TEST_F(RandomSceneTest, GL41ReadsTheSameVerticesMerged)
{
    EXPECT_GT(compareAll<RendererGL41>(MemberBlocks::Shared), sceneCount);
}

TEST_F(RandomSceneTest, GL46ReadsTheSameVerticesMerged)
{
    EXPECT_GT(compareAll<RendererGL46>(MemberBlocks::Shared), sceneCount);
}

TEST_F(RandomSceneTest, GL46ReadsTheSameUniformBlocksMerged)
{
    EXPECT_GT(compareAll<RendererGL46>(MemberBlocks::Own), sceneCount);
}

TEST_F(RandomSceneTest, GL46ReadsTheSameUniformBlocksInSeveralBatches)
{
    const size_t whole = compareAll<RendererGL46>(MemberBlocks::Own);
    EXPECT_GT(compareAll<RendererGL46>(MemberBlocks::Own, 1, 48), whole) << "three members a batch";
}

TEST_F(RandomSceneTest, GL46ReadsTheSameStorageBlocksMerged)
{
    SoPreferences::setBool("KVR_SHADER_BUFFERS_MERGING_USE_UBO", false);
    EXPECT_GT(compareAll<RendererGL46>(MemberBlocks::Own, 0), sceneCount);
}

TEST_F(RandomSceneTest, SettingLeavesDrawsOfOneMemberRangeByRange)
{
    SoPreferences::setBool("KVR_RENDERENGINE_ENABLE_PRIMITIVES_MERGING", false);
    restart<RendererGL41>();
    RecordedDraws draws(gl);
    const ShaderStateCoreProperties state = makeState();
    for (uint32_t seed = 0; seed < sceneCount; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RandomScene scene = makeRandomScene(seed, MemberBlocks::Shared);
        ScenePlayer player(*renderer, scene, state);
        for (size_t i = 0; i < scene.draws.size(); ++i)
        {
            draws.take();
            player.drawRangeByRange(i);
            const RecordedDraws::Runs separate = draws.take();
            player.drawMerged(i);
            EXPECT_TRUE(draws.take() == separate) << "draw " << i;
            EXPECT_EQ(draws.getMultiDrawCount() > 0, scene.draws[i].members.size() > 1);
        }
    }
}

} // namespace
} // namespace renderengine
