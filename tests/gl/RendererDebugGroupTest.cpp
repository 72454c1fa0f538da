// The texts of the debug groups about each command, for those who read a frame debugger.

#include "RendererGL46Fixture.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{
namespace
{

struct NoTask final : TaskInterface
{
    void run() override {}
};

class RendererDebugGroupTest : public RendererGL46Test
{
protected:
    void SetUp() override
    {
        SoPreferences::setBool("KVR_RENDERENGINE_GLDEBUG_GROUP", true);
        RendererGL46Test::SetUp();
    }

    /// The texts of the renderer's own groups since the last call, outer before inner.
    Texts groups()
    {
        const std::string prefix = "glPushDebugGroup(GL_DEBUG_SOURCE_THIRD_PARTY, 1, ";
        Texts texts;
        for (const std::string& call : gl.callsMatching(prefix))
        {
            const size_t quote = call.find('"');
            const std::string text = call.substr(quote + 1, call.rfind('"') - quote - 1);
            EXPECT_EQ(call.substr(prefix.size(), quote - prefix.size()), std::to_string(text.size()) + ", ");
            texts.push_back(text);
        }
        EXPECT_EQ(gl.countOf("glPushDebugGroup("), gl.countOf("glPopDebugGroup("));
        gl.clear();
        return texts;
    }

    template <class Command, class... Arguments> Texts groupsOf(Arguments&&... arguments)
    {
        gl.clear();
        run<Command>(std::forward<Arguments>(arguments)...);
        return groups();
    }
};

const std::string execute = "renderengine::RendererGL41::execute ";
const std::string unbind = "renderengine::RendererGL41::unbindTextures ";

TEST_F(RendererDebugGroupTest, ResourceCommandsHaveTheirLabels)
{
    const SamplerHandle sampler = renderer->generateSamplerHandle();
    EXPECT_EQ(groupsOf<CommandCreateSampler>(sampler, SamplerProperties()), Texts{execute + "CommandCreateSampler"});
    EXPECT_EQ(groupsOf<CommandUpdateSampler>(sampler, SamplerProperties()), Texts{execute + "CommandUpdateSampler"});
    TextureProperties texture;
    texture.width = texture.height = 4;
    const TextureHandle handle = renderer->generateTextureHandle();
    EXPECT_EQ(groupsOf<CommandCreateTexture>(handle, texture), Texts{execute + "Create Texture"});
    EXPECT_EQ(groupsOf<CommandResizeTexture>(handle, 8u, 8u, 1u), (Texts{execute + "Resize Texture", unbind}));
    EXPECT_EQ(groupsOf<CommandUpdateTexture>(handle, texture), (Texts{execute + "CommandUpdateTexture", unbind}));
    EXPECT_EQ(groupsOf<CommandUpdateTextureBatchData>(handle, TextureUpdateBatchDataProperties()),
              Texts{execute + "CommandUpdateTextureBatchData"});
    const RenderTargetHandle target = renderer->generateRenderTargetHandle();
    EXPECT_EQ(groupsOf<CommandCreateRenderTarget>(target, RenderTargetProperties()),
              Texts{execute + "Update RenderTarget"});
    EXPECT_EQ(groupsOf<CommandUpdateRenderTarget>(target, RenderTargetProperties()),
              Texts{execute + "Update RenderTarget"});
    EXPECT_EQ(groupsOf<CommandDestroyTexture>(handle), Texts{unbind});
}

TEST_F(RendererDebugGroupTest, CommandsThatFindNothingOpenNoGroup)
{
    EXPECT_EQ(groupsOf<CommandClearRT>(RenderTargetHandle(), ClearTargetProperties()), Texts{});
    EXPECT_EQ(groupsOf<CommandRender>(DrawHandle()), Texts{});
    EXPECT_EQ(groupsOf<CommandRender>(makeDraw(Scene(), {})), Texts{});
    EXPECT_EQ(groupsOf<CommandCompute>(nullptr, ComputeProperties()), Texts{});
    EXPECT_EQ(groupsOf<CommandUpdateSampler>(SamplerHandle(), SamplerProperties()), Texts{});
    EXPECT_EQ(log.take(), Texts{"error: [RendererGL] Trying to update an invalid sampler."});
}

TEST_F(RendererDebugGroupTest, ComputeAndTaskHaveTheirLabels)
{
    const Scene scene = makeScene();
    auto state = std::make_shared<ShaderStateCoreProperties>();
    state->program = scene.shaderState.program;
    state->textures.mask = 1;
    state->textures.textures[0] = makeTexture();
    const Texts shaderState = {"DebugMarkerPushPop::DebugMarkerPushPop ",
                               "renderengine::RendererGL41::setupShaderState "};
    EXPECT_EQ(
        groupsOf<CommandCompute>(state, ComputeProperties()),
        join({{execute + "CommandCompute", "renderengine::RendererGL41::setupTexturesDifferential "}, shaderState}));
    TaskProperties task;
    task.task = std::make_shared<NoTask>();
    EXPECT_EQ(groupsOf<CommandRenderTask>(task, nullptr, ShaderStateProperties(), false),
              join({{execute + "CommandRenderTask"},
                    shaderState,
                    {unbind, "renderengine::RendererGL41::setupTextures ", unbind}}));
}

TEST_F(RendererDebugGroupTest, MergeOfShaderBuffersHasItsOwn)
{
    beginWithBlockSize(16384);
    Scene scene = makeScene();
    const ShaderBufferHandle material = block("Material", 2);
    const DrawHandle draw =
        makeMergedDraw(scene, {{block("Transform", 1), material}, {block("Transform", 3), material}});
    run<CommandRender>(draw);
    gl.clear();
    run<CommandRender>(draw);
    // Also when there is nothing to rebuild.
    EXPECT_EQ(groups(), (Texts{execute + "CommandRender", "DebugMarkerPushPop::DebugMarkerPushPop ",
                               "renderengine::RendererGL41::setupShaderState ",
                               "renderengine::RendererGL46::mergeShaderBuffers "}));
    run<CommandRender>(scene.draw);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(groups(), (Texts{execute + "CommandRender", "DebugMarkerPushPop::DebugMarkerPushPop ",
                               "renderengine::RendererGL41::setupShaderState "}))
        << "nothing to merge for one member";
}

} // namespace
} // namespace renderengine
