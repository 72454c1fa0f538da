// Editing a merged draw of ten thousand geometries: what each change costs, in calls.

#include "RendererFixture.h"

#include <algorithm>
#include <cstring>

namespace renderengine
{
namespace
{

constexpr uint32_t memberCount = 10000;
constexpr uint32_t vertexCount = 3;

class RendererEditTest : public RendererGLTest
{
protected:
    struct Member
    {
        BufferHandle positions;
        BufferHandle transform;
        DrawPropertiesHandle handle;
    };

    /// What a frame did.
    struct Effect
    {
        size_t made = 0;
        size_t deleted = 0;
        size_t copies = 0;
        size_t calls = 0;
        size_t multiDraws = 0;
        Texts draws;
    };

    template <class Renderer> void startWithMembers()
    {
        start<Renderer>();
        gl.answer(GL_MAX_UNIFORM_BLOCK_SIZE, int64_t{1} << 20);
        renderer->begin();
        scene = makeScene();
        draw = makeDraw(scene, {});
        material = makeShaderBuffer("Material", 1, 16);
        for (uint32_t i = 0; i < memberCount; ++i)
        {
            members.push_back(addMember());
        }
        gl.clear();
    }

    Member addMember()
    {
        Member member;
        DrawProperties properties;
        VertexBufferProperties positions;
        positions.name = "position";
        positions.componentCount = 3;
        positions.buffer = member.positions = makeBuffer(vertexCount * 12);
        properties.vertexBuffers = {renderer->generateVertexBufferHandle()};
        run<CommandCreateVertexBuffer>(properties.vertexBuffers.front(), positions);
        ShaderBufferProperties transform;
        transform.name = "Transform";
        transform.buffer = member.transform = makeBuffer(16);
        const ShaderBufferHandle transformHandle = renderer->generateShaderBufferHandle();
        run<CommandCreateShaderBuffer>(transformHandle, transform);
        properties.shaderBuffers = {ShaderBufferHandle(), transformHandle, material};
        properties.ranges = scene.properties.ranges;
        member.handle = makeMember(properties);
        run<CommandAddDrawProperties>(draw, member.handle);
        return member;
    }

    Effect render()
    {
        gl.clear();
        const size_t made = gl.made("Buffer");
        const size_t deleted = gl.deleted("Buffer");
        run<CommandRender>(draw);
        Effect effect;
        effect.made = gl.made("Buffer") - made;
        effect.deleted = gl.deleted("Buffer") - deleted;
        effect.copies = gl.countOf("glCopyBufferSubData(");
        effect.calls = gl.calls().size();
        effect.draws = gl.callsMatching("glMultiDrawElementsBaseVertex(");
        effect.multiDraws = effect.draws.size();
        return effect;
    }

    void writeInto(const BufferHandle& handle, size_t size)
    {
        const std::vector<uint8_t> data(size, 7);
        BufferProperties properties;
        properties.size = size;
        properties.data = data.data();
        run<CommandUpdateBuffer>(handle, properties);
    }

    static bool drawsMembers(const Effect& effect, size_t count)
    {
        return effect.draws.size() == 1 &&
               effect.draws.front().find(", " + std::to_string(count) + ", {0, 3, 6") != std::string::npos;
    }

    Scene scene;
    DrawHandle draw;
    ShaderBufferHandle material;
    std::vector<Member> members;
};

// Merged positions, draw indices and indices on both renderers; an indirect and a merged buffer for transforms and for
// materials on the newer one.
constexpr size_t buffersOf41 = 3;
constexpr size_t buffersOf46 = 7;

TEST_F(RendererEditTest, FirstFrameCopiesEachMemberOnceAndTheNextOneNothing)
{
    startWithMembers<RendererGL41>();
    const Effect first = render();
    EXPECT_EQ(first.made, buffersOf41);
    EXPECT_EQ(first.copies, 2u * memberCount) << "vertices and indices";
    EXPECT_TRUE(drawsMembers(first, memberCount));
    const Effect steady = render();
    EXPECT_EQ(steady.made + steady.deleted + steady.copies, 0u);
    EXPECT_TRUE(drawsMembers(steady, memberCount));
    EXPECT_LT(steady.calls, 30u) << "whatever the number of members";
}

TEST_F(RendererEditTest, UpdateOfOneMemberRebuildsAllOfThemOnce)
{
    startWithMembers<RendererGL46>();
    const Effect first = render();
    EXPECT_EQ(first.made, buffersOf46);
    EXPECT_EQ(first.copies, 3u * memberCount + 1) << "vertices, indices, transforms, the one material";
    for (const BufferHandle& changed : {members[5000].positions, members[17].transform})
    {
        writeInto(changed, changed == members[17].transform ? 16 : vertexCount * 12);
        const Effect rebuilt = render();
        EXPECT_EQ(rebuilt.made, buffersOf46);
        EXPECT_EQ(rebuilt.deleted, buffersOf46);
        EXPECT_EQ(rebuilt.copies, first.copies);
        EXPECT_TRUE(drawsMembers(rebuilt, memberCount));
        const Effect steady = render();
        EXPECT_EQ(steady.made + steady.deleted + steady.copies, 0u);
    }
}

TEST_F(RendererEditTest, AddedMemberRebuildsAllOfThem)
{
    startWithMembers<RendererGL46>();
    render();
    addMember();
    const Effect rebuilt = render();
    EXPECT_EQ(rebuilt.made, buffersOf46);
    EXPECT_EQ(rebuilt.deleted, buffersOf46);
    EXPECT_EQ(rebuilt.copies, 3u * (memberCount + 1) + 1);
    EXPECT_TRUE(drawsMembers(rebuilt, memberCount + 1));
}

TEST_F(RendererEditTest, RemovedMemberStaysUntilSomethingElseChanges)
{
    startWithMembers<RendererGL46>();
    render();
    const Effect steady = render();
    run<CommandRemoveDrawProperties>(draw, members[4321].handle);
    const Effect removed = render();
    EXPECT_EQ(removed.made + removed.deleted + removed.copies, 0u);
    EXPECT_EQ(removed.calls, steady.calls);
    EXPECT_EQ(removed.draws, steady.draws);

    // The vertices of the member that left no longer belong to the draw, but its batch was made from them.
    writeInto(members[4321].positions, vertexCount * 12);
    const Effect rebuilt = render();
    EXPECT_EQ(rebuilt.made, buffersOf46);
    EXPECT_EQ(rebuilt.copies, 3u * (memberCount - 1) + 1);
    EXPECT_TRUE(drawsMembers(rebuilt, memberCount - 1));

    writeInto(members[4321].positions, vertexCount * 12);
    EXPECT_EQ(render().made, 0u) << "now nothing is made from them";
}

TEST_F(RendererEditTest, UpdatedRecordOfOneMemberRebuildsAllOfThem)
{
    startWithMembers<RendererGL41>();
    render();
    DrawProperties properties = scene.properties;
    properties.ranges.front().count = 2;
    run<CommandUpdateDrawProperties>(members.front().handle, properties);
    const Effect rebuilt = render();
    EXPECT_EQ(rebuilt.made, buffersOf41);
    EXPECT_EQ(rebuilt.draws.front().substr(0, 50), "glMultiDrawElementsBaseVertex(GL_TRIANGLES, {2, 3,");
}

TEST_F(RendererEditTest, DestroyOfTheDrawFreesWhatMergingMade)
{
    startWithMembers<RendererGL46>();
    const size_t live = gl.live("Buffer");
    render();
    EXPECT_EQ(gl.live("Buffer"), live + buffersOf46);
    run<CommandDestroyDraw>(draw);
    EXPECT_EQ(gl.live("Buffer"), live);
}

} // namespace
} // namespace renderengine
