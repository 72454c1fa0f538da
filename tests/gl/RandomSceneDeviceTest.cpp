// Random scenes on a real context: merged and range by range, on both renderers, they are one picture.

#include "GLDeviceTestSupport.h"
#include "RandomScene.h"
#include "RendererDriver.h"
#include "RendererGL41TestAccess.h"
#include "ScenePlayer.h"

#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace renderengine
{
namespace
{

constexpr uint32_t sceneSize = 64;
constexpr uint32_t sharedSceneCount = 96;
constexpr uint32_t ownSceneCount = 64;

using Pixels = std::vector<uint32_t>;

/// What came of drawing many scenes both ways.
struct Show
{
    std::vector<Pixels> pictures;     ///< of the ranges one by one: each scene as it is made, then after a change
    size_t unequalPictures = 0;       ///< merged ones that are not those of the ranges one by one
    size_t paintedScenes = 0;         ///< scenes of which anything is seen
    size_t mergedBatches = 0;         ///< batches of several draws, of all scenes as they are made
    size_t drawsOfSeveralMembers = 0; ///< of all scenes
};

const char* const sceneVertexText = R"(
layout(location = 0) in vec3 position;
in vec4 color;
in vec4 tint;
in vec2 shift;
in float KvrAttribDrawIndex;
uniform int KvrUseMergedShaderBuffers;
uniform float KvrPointSize;
layout(std140) BLOCK Transform { vec4 place; };
layout(std140) BLOCK Material { vec4 surface; };
layout(LAYOUT) BLOCK TransformIndirectBuffer { INDEX transformIndices[COUNT]; };
layout(LAYOUT) BLOCK TransformMergedBuffer { vec4 places[COUNT]; };
layout(LAYOUT) BLOCK MaterialIndirectBuffer { INDEX materialIndices[COUNT]; };
layout(LAYOUT) BLOCK MaterialMergedBuffer { vec4 surfaces[COUNT]; };
out vec4 paint;
void main()
{
    vec4 myPlace = place;
    vec4 mySurface = surface;
    if (KvrUseMergedShaderBuffers != 0)
    {
        int member = floatBitsToInt(KvrAttribDrawIndex);
        myPlace = places[FIRST(transformIndices[member])];
        mySurface = surfaces[FIRST(materialIndices[member])];
    }
    paint = vec4(color.rgb, 1) * tint * mySurface;
    gl_Position = vec4(position.xy * myPlace.xy + myPlace.zw + shift, position.z, 1);
    gl_PointSize = KvrPointSize;
}
)";

const char* const sceneFragmentText = R"(#version 430
in vec4 paint;
out vec4 result;
void main() { result = vec4(paint.rgb, 1); }
)";

const char* const uniformHeader = "#version 430\n"
                                  "#define BLOCK uniform\n#define LAYOUT std140\n#define COUNT 8\n"
                                  "#define INDEX ivec4\n#define FIRST(entry) (entry).x\n";
const char* const storageHeader = "#version 430\n"
                                  "#define BLOCK buffer\n#define LAYOUT std430\n#define COUNT\n"
                                  "#define INDEX int\n#define FIRST(entry) (entry)\n";

/// What the context answers, but for the size of a uniform block.
class LimitedUniformBlocks
{
public:
    explicit LimitedUniformBlocks(GLint bytes) : m_table(limit(bytes)), m_scope(&m_table) {}

private:
    static GLEWContextStruct limit(GLint bytes)
    {
        s_bytes = bytes;
        s_getIntegerv = glbinding::t_table->kvr_common__glewGetIntegerv;
        GLEWContextStruct table = *glbinding::t_table;
        table.kvr_common__glewGetIntegerv = [](GLenum name, GLint* value)
        {
            s_getIntegerv(name, value);
            *value = name == GL_MAX_UNIFORM_BLOCK_SIZE ? s_bytes : *value;
        };
        return table;
    }

    static inline GLint s_bytes = 0;
    static inline decltype(GLEWContextStruct::kvr_common__glewGetIntegerv) s_getIntegerv = nullptr;

    GLEWContextStruct m_table;
    glbinding::ScopedTable m_scope;
};

class RandomSceneDeviceTest : public ResourceDeviceTest, protected RendererDriver
{
protected:
    void TearDown() override
    {
        stop();
        SoPreferences::unset("KVR_SHADER_BUFFERS_MERGING_USE_UBO");
        SoPreferences::unset("KVR_RENDERENGINE_ENABLE_PRIMITIVES_MERGING");
        ResourceDeviceTest::TearDown();
    }

    void stop()
    {
        if (renderer)
        {
            renderer->destroy();
            renderer.reset();
        }
    }

    template <class Renderer> void restart(const char* header = uniformHeader)
    {
        stop();
        start<Renderer>();
        renderer->begin();
        m_texture = makeSceneTexture(8, 21);
        state.renderTarget = makeTarget({{m_texture, 0}, {makeSceneTexture(2, 84), 19}});
        state.viewport = makeViewport(sceneSize, sceneSize);
        const std::string vertexText = std::string(header) + sceneVertexText;
        ShaderProgramProperties program;
        program.shaderObjects = {compile(0, vertexText), compile(2, sceneFragmentText)};
        state.program = renderer->generateShaderProgramHandle();
        run<CommandCreateShaderProgram>(state.program, program);
        EXPECT_EQ(renderer->getShaderProgramLog(state.program), "");
    }

    TextureHandle makeSceneTexture(uint32_t format, uint32_t internalFormat)
    {
        TextureProperties properties;
        properties.width = sceneSize;
        properties.height = sceneSize;
        properties.format = format;
        properties.internalFormat = internalFormat;
        const TextureHandle handle = renderer->generateTextureHandle();
        run<CommandCreateTexture>(handle, properties);
        return handle;
    }

    RenderTargetHandle makeTarget(std::initializer_list<std::pair<TextureHandle, uint8_t>> attachments)
    {
        RenderTargetProperties properties;
        for (const auto& [texture, attachment] : attachments)
        {
            RenderTextureProperty entry;
            entry.texture = texture;
            entry.attachment = attachment;
            properties.attachments.push_back(entry);
        }
        const RenderTargetHandle handle = renderer->generateRenderTargetHandle();
        run<CommandCreateRenderTarget>(handle, properties);
        return handle;
    }

    ShaderObjectHandle compile(uint32_t stage, const std::string& text)
    {
        ShaderObjectProperties properties;
        properties.stage = stage;
        properties.source = text;
        const ShaderObjectHandle handle = renderer->generateShaderObjectHandle();
        run<CommandCreateShaderObject>(handle, properties);
        EXPECT_EQ(renderer->getShaderObjectLog(handle), "");
        return handle;
    }

    template <class DrawScene> Pixels picture(const DrawScene& drawScene)
    {
        run<CommandClearRT>(state.renderTarget, ClearTargetProperties());
        drawScene();
        run<CommandReadbackTexture>(m_texture);
        Pixels pixels(sceneSize * sceneSize);
        renderer->readbackTexture(m_texture, pixels.data(), pixels.size() * sizeof(pixels[0]));
        return pixels;
    }

    /// Pixels with a channel that is further apart than the tolerance.
    static size_t countDifferent(const Pixels& first, const Pixels& second, int tolerance = 0)
    {
        size_t count = 0;
        for (size_t i = 0; i < first.size(); ++i)
        {
            int largest = 0;
            for (uint32_t shift = 0; shift < 32; shift += 8)
            {
                const int one = static_cast<int>(first[i] >> shift & 0xFFu);
                const int other = static_cast<int>(second[i] >> shift & 0xFFu);
                largest = std::max(largest, std::abs(one - other));
            }
            count += largest > tolerance ? 1 : 0;
        }
        return count;
    }

    /// A normalised constant is turned into floats by another part of the driver than the stream that it is merged
    /// into, so a colour may differ by rounding. Everything else is equal to the bit.
    static int toleranceOf(const RandomScene& scene)
    {
        return std::any_of(scene.draws.begin(), scene.draws.end(),
                           [](const RandomScene::Draw& draw)
                           { return !draw.members.front().overallAttributes.empty(); })
                   ? 1
                   : 0;
    }

    /// Draws each scene range by range, merged, merged again without a rebuild, and once more both ways with other
    /// vertices in one of its buffers.
    Show play(MemberBlocks blocks, uint32_t sceneCount, uint32_t blockKind = 1)
    {
        Show show;
        for (uint32_t seed = 0; seed < sceneCount; ++seed)
        {
            SCOPED_TRACE("seed " + std::to_string(seed));
            const RandomScene scene = makeRandomScene(seed, blocks, EmptyRanges::None);
            ScenePlayer player(*renderer, scene, state, blockKind);
            const int tolerance = toleranceOf(scene);
            const Pixels separate = picture([&] { player.drawRangeByRange(); });
            compareMerged(show, player, separate, tolerance, "built");
            compareMerged(show, player, separate, tolerance, "without a rebuild");
            count(show, scene, player, separate);

            const RandomScene::VertexBuffer& buffer = scene.vertexBuffers.front();
            RandomNumbers random(seed + 1000);
            const size_t elementSize = size_t{buffer.dataType.getSize()} * buffer.componentCount;
            player.changeVertices(0, makeRandomVertices(random, buffer, buffer.data.size() / elementSize));
            player.changeTransform(scene.draws.front().members.front().transform, {0.6f, 0.7f, 0.1f, -0.1f});
            const Pixels changed = picture([&] { player.drawRangeByRange(); });
            compareMerged(show, player, changed, tolerance, "after a change");
            show.pictures.insert(show.pictures.end(), {separate, changed});
        }
        return show;
    }

    void compareMerged(Show& show, ScenePlayer& player, const Pixels& separate, int tolerance, const char* when)
    {
        const size_t different = countDifferent(picture([&] { player.drawMerged(); }), separate, tolerance);
        EXPECT_EQ(different, 0u) << when;
        show.unequalPictures += different > 0 ? 1 : 0;
    }

    void count(Show& show, const RandomScene& scene, const ScenePlayer& player, const Pixels& pixels)
    {
        const auto background = static_cast<size_t>(std::count(pixels.begin(), pixels.end(), 0u));
        show.paintedScenes += background < pixels.size() ? 1 : 0;
        for (const DrawHandle& handle : player.getMergedDraws())
        {
            show.mergedBatches += RendererGL41TestAccess::countMergedBatches(*renderer, handle);
        }
        for (const RandomScene::Draw& draw : scene.draws)
        {
            show.drawsOfSeveralMembers += draw.members.size() > 1 ? 1 : 0;
        }
    }

    static size_t countUnequal(const std::vector<Pixels>& first, const std::vector<Pixels>& second)
    {
        EXPECT_EQ(first.size(), second.size());
        size_t count = 0;
        for (size_t i = 0; i < std::min(first.size(), second.size()); ++i)
        {
            const size_t different = countDifferent(first[i], second[i]);
            EXPECT_EQ(different, 0u) << "picture " << i;
            count += different > 0 ? 1 : 0;
        }
        return count;
    }

    ShaderStateCoreProperties state;

private:
    TextureHandle m_texture;
};

TEST_F(RandomSceneDeviceTest, MergingIsNotSeenAndBothRenderersShowTheSame)
{
    restart<RendererGL41>();
    const Show older = play(MemberBlocks::Shared, sharedSceneCount);
    restart<RendererGL46>();
    const Show newer = play(MemberBlocks::Shared, sharedSceneCount);
    EXPECT_EQ(older.unequalPictures, 0u);
    EXPECT_EQ(newer.unequalPictures, 0u);
    EXPECT_EQ(countUnequal(older.pictures, newer.pictures), 0u);
    EXPECT_GT(older.paintedScenes, sharedSceneCount * 9 / 10) << "nearly all scenes show something";
    EXPECT_GE(older.mergedBatches, older.drawsOfSeveralMembers);
    EXPECT_GE(newer.mergedBatches, newer.drawsOfSeveralMembers);
}

TEST_F(RandomSceneDeviceTest, MembersKeepTheirUniformBlocks)
{
    restart<RendererGL46>();
    const Show show = play(MemberBlocks::Own, ownSceneCount);
    EXPECT_EQ(show.unequalPictures, 0u);
    EXPECT_GT(show.paintedScenes, ownSceneCount * 9 / 10);
    EXPECT_GE(show.mergedBatches, show.drawsOfSeveralMembers);
}

TEST_F(RandomSceneDeviceTest, MembersKeepTheirUniformBlocksInSeveralBatches)
{
    restart<RendererGL46>();
    const Show whole = play(MemberBlocks::Own, ownSceneCount);
    const LimitedUniformBlocks threeMembersABatch(48);
    restart<RendererGL46>();
    const Show split = play(MemberBlocks::Own, ownSceneCount);
    EXPECT_EQ(split.unequalPictures, 0u);
    EXPECT_EQ(countUnequal(whole.pictures, split.pictures), 0u);
    EXPECT_GT(split.mergedBatches, whole.mergedBatches);
}

TEST_F(RandomSceneDeviceTest, MembersKeepTheirStorageBlocks)
{
    SoPreferences::setBool("KVR_SHADER_BUFFERS_MERGING_USE_UBO", false);
    restart<RendererGL46>(storageHeader);
    const Show show = play(MemberBlocks::Own, ownSceneCount, 0);
    EXPECT_EQ(show.unequalPictures, 0u);
    EXPECT_GT(show.paintedScenes, ownSceneCount * 9 / 10);
    EXPECT_GE(show.mergedBatches, show.drawsOfSeveralMembers);
}

TEST_F(RandomSceneDeviceTest, SettingForDrawsOfOneMemberIsNotSeen)
{
    SoPreferences::setBool("KVR_RENDERENGINE_ENABLE_PRIMITIVES_MERGING", false);
    restart<RendererGL41>();
    const Show show = play(MemberBlocks::Shared, sharedSceneCount);
    EXPECT_EQ(show.unequalPictures, 0u);
    EXPECT_GT(show.paintedScenes, sharedSceneCount * 9 / 10);
    EXPECT_EQ(show.mergedBatches, show.drawsOfSeveralMembers) << "the others are drawn range by range";
    EXPECT_GT(show.drawsOfSeveralMembers, 0u);
}

} // namespace
} // namespace renderengine
