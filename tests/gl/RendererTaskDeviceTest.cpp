#include "RendererDeviceFixture.h"

namespace renderengine
{
namespace
{

template <class Renderer> class RendererTaskDeviceTest : public BothRenderersDevice<Renderer>
{
};

TYPED_TEST_SUITE(RendererTaskDeviceTest, Renderers, RendererNames);

TYPED_TEST(RendererTaskDeviceTest, ComputeWritesItsStorageBuffer)
{
    const char* const text =
        "#version 430\n"
        "layout(local_size_x = 4) in;\n"
        "layout(std430) buffer Results { uint results[]; };\n"
        "uniform int factor;\n"
        "void main() { results[gl_GlobalInvocationID.x] = gl_GlobalInvocationID.x * uint(factor); }\n";
    auto state = std::make_shared<ShaderStateCoreProperties>();
    state->program = this->link({{5, text}});
    ShaderBufferProperties properties;
    properties.kind = 0;
    properties.buffer = this->makeBuffer(32);
    properties.name = "Results";
    state->shaderBuffers = {this->renderer->generateShaderBufferHandle()};
    this->template run<CommandCreateShaderBuffer>(state->shaderBuffers[0], properties);
    ShaderParameterProperties<int> factor;
    factor.value = 3;
    state->shaderParameters = {this->makeParameter("factor", factor)};
    ComputeProperties compute;
    compute.groups = SbVec3i32(2, 1, 1);
    this->template run<CommandCompute>(state, compute);
    this->template run<CommandMemoryBarrier>(-1);
    this->template run<CommandMapBuffer>(properties.buffer, 0u, 32u, 0u);
    const auto* results = static_cast<const uint32_t*>(this->renderer->getMappedBufferPointer(properties.buffer));
    ASSERT_NE(results, nullptr);
    EXPECT_EQ(std::vector<uint32_t>(results, results + 8), (std::vector<uint32_t>{0, 3, 6, 9, 12, 15, 18, 21}));
    this->template run<CommandUnmapBuffer>(properties.buffer);
}

TYPED_TEST(RendererTaskDeviceTest, FeedbackCapturesOutputs)
{
    const char* const text = "#version 330\n"
                             "in vec3 position;\n"
                             "out vec3 doubled;\n"
                             "void main() { doubled = 2.0 * position; gl_Position = vec4(position, 1); }\n";
    Scene scene = this->makeDeviceScene(this->link({{0, text}, {2, colorFragmentText}}));
    TransformFeedbackProperties feedback;
    feedback.varyings = {"doubled"};
    feedback.buffers = {this->makeBuffer(48)};
    feedback.primitiveMode = GL_POINTS;
    feedback.discard = 1;
    ShaderStateProperties state;
    static_cast<ShaderStateCoreProperties&>(state) = scene.shaderState;
    DrawProperties properties = this->makeStrip(rectangle(-1, 1, 0.25f));
    properties.ranges[0].primitive = 0;
    const DrawHandle draw = this->makeDraw(scene, {this->makeMember(properties)});
    const QueryHandle query = this->renderer->generateQueryHandle();
    this->template run<CommandCreateQuery>(query, 4u);
    this->clear();
    this->template run<CommandRender>(draw);
    this->template run<CommandBeginQuery>(query);
    this->template run<CommandBeginTransformFeedback>(feedback, state);
    this->template run<CommandRender>(draw);
    this->template run<CommandEndTransformFeedback>();
    this->template run<CommandEndQuery>(query);
    this->template run<CommandGetQueryResult>(query);
    EXPECT_EQ(this->renderer->getQueryResult(query), 4u);
    this->template run<CommandMapBuffer>(feedback.buffers[0], 0u, 48u, 0u);
    const auto* captured = static_cast<const float*>(this->renderer->getMappedBufferPointer(feedback.buffers[0]));
    ASSERT_NE(captured, nullptr);
    EXPECT_EQ(std::vector<float>(captured, captured + 12),
              (std::vector<float>{-2, -2, 0.5f, 2, -2, 0.5f, -2, 2, 0.5f, 2, 2, 0.5f}));
    this->template run<CommandUnmapBuffer>(feedback.buffers[0]);
}

TYPED_TEST(RendererTaskDeviceTest, QueryCountsSamples)
{
    this->clear();
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    const QueryHandle query = this->renderer->generateQueryHandle();
    this->template run<CommandCreateQuery>(query, 0u);
    this->template run<CommandBeginQuery>(query);
    this->drawColored(scene, red, this->makeStrip(rectangle(-1, 0)));
    this->template run<CommandEndQuery>(query);
    this->template run<CommandGetQueryResult>(query);
    EXPECT_EQ(this->renderer->getQueryResult(query), allPixels / 2);
    this->template run<CommandDestroyQuery>(query);
}

struct FixedFunctionTask final : TaskInterface
{
    void run() override
    {
        glBegin(GL_TRIANGLE_STRIP);
        glVertex2f(0, 0);
        glVertex2f(8, 0);
        glVertex2f(0, 16);
        glVertex2f(8, 16);
        glEnd();
        // What a careless client leaves behind.
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glViewport(0, 0, 1, 1);
    }
};

TYPED_TEST(RendererTaskDeviceTest, RenderTaskDrawsWithFixedFunctionAndTheNextDrawIsRight)
{
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    this->clear();
    this->drawColored(scene, red, this->makeStrip(rectangle(0.75f, 1)));
    ShaderStateProperties state;
    static_cast<ShaderStateCoreProperties&>(state) = scene.shaderState;
    state.program = ShaderProgramHandle();
    // Pixels to device coordinates.
    SbMatrix& projection = state.transform.part2.projection;
    projection[0][0] = 2.0f / 16.0f;
    projection[1][1] = 2.0f / 16.0f;
    projection[3][0] = -1.0f;
    projection[3][1] = -1.0f;
    state.material.diffuse.front = SbVec4f(0, 1, 0, 1);
    TaskProperties task;
    task.task = std::make_shared<FixedFunctionTask>();
    this->template run<CommandRenderTask>(task, std::make_shared<const GfxStateProperties>(scene.gfxState), state,
                                          true);
    this->drawColored(scene, blue, this->makeStrip(rectangle(0, 0.25f)));
    const Picture picture = this->read();
    EXPECT_EQ(this->count(picture, green), allPixels / 2);
    EXPECT_EQ(this->count(picture, red), 2 * pictureSize);
    EXPECT_EQ(this->count(picture, blue), 2 * pictureSize);
}

using RendererGL46TaskDeviceTest = BothRenderersDevice<RendererGL46>;

TEST_F(RendererGL46TaskDeviceTest, ComputeWritesThroughAnImage)
{
    const char* const text =
        "#version 430\n"
        "layout(local_size_x = 4, local_size_y = 4) in;\n"
        "layout(rgba8) uniform writeonly image2D picture;\n"
        "void main() { imageStore(picture, ivec2(gl_GlobalInvocationID.xy), vec4(0, 1, 0, 1)); }\n";
    clear(red);
    TextureImageProperties properties;
    properties.texture = colorTexture;
    properties.name = "picture";
    properties.unit = 5;
    properties.access = 1;
    auto state = std::make_shared<ShaderStateCoreProperties>();
    state->program = link({{5, text}});
    state->textureImages = {renderer->generateTextureImageHandle()};
    run<CommandCreateTextureImage>(state->textureImages[0], properties);
    ComputeProperties compute;
    compute.groups = SbVec3i32(4, 2, 1);
    run<CommandCompute>(state, compute);
    run<CommandMemoryBarrier>(-1);
    const Picture picture = read();
    EXPECT_EQ(count(picture, green), allPixels / 2);
    EXPECT_EQ(count(picture, red), allPixels / 2);
}

} // namespace
} // namespace renderengine
