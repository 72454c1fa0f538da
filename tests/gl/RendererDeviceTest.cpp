#include "GLDeviceTestSupport.h"
#include "RendererDriver.h"

#include <renderengine/FramebufferParameterGLEventArg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numeric>

namespace renderengine
{
namespace
{

constexpr uint32_t pictureSize = 16;

using Pixel = std::array<uint8_t, 4>;
using Picture = std::vector<Pixel>;

constexpr Pixel black = {0, 0, 0, 0};
constexpr Pixel red = {255, 0, 0, 255};
constexpr Pixel green = {0, 255, 0, 255};
constexpr Pixel blue = {0, 0, 255, 255};
constexpr Pixel white = {255, 255, 255, 255};

// Indices of records: pixel formats, internal formats, attachments, texture types.
constexpr uint32_t depthStencilFormat = 2;
constexpr uint32_t rgbaFormat = 8;
constexpr uint32_t rgba8 = 21;
constexpr uint32_t depth24Stencil8 = 84;
constexpr uint8_t depthStencilAttachment = 19;
constexpr uint32_t texture2D = 2;
constexpr uint32_t texture2DMultisample = 3;

const char* const plainVertexText = "#version 330\n"
                                    "in vec3 position;\n"
                                    "void main() { gl_Position = vec4(position, 1); }\n";

const char* const colorFragmentText = "#version 330\n"
                                      "uniform vec4 color;\n"
                                      "out vec4 result;\n"
                                      "void main() { result = color; }\n";

/// The vertices of a rectangle in device coordinates, for a strip.
std::array<float, 12> rectangle(float left, float right, float depth = 0.0f)
{
    return {left, -1, depth, right, -1, depth, left, 1, depth, right, 1, depth};
}

/// Drives one of the renderers on a real context, into a target of 16 by 16 pixels.
class RendererDevice : public ResourceDeviceTest, protected RendererDriver
{
protected:
    using ResourceDeviceTest::ResourceDeviceTest;

    void TearDown() override
    {
        renderer->destroy();
        ResourceDeviceTest::TearDown();
    }

    template <class Renderer> void startOnDevice()
    {
        start<Renderer>();
        renderer->begin();
        colorTexture = makePictureTexture(texture2D, rgbaFormat, rgba8);
        depthTexture = makePictureTexture(texture2D, depthStencilFormat, depth24Stencil8);
        target = makeTarget({{colorTexture, 0}, {depthTexture, depthStencilAttachment}});
        viewport = makeViewport(static_cast<int32_t>(pictureSize), static_cast<int32_t>(pictureSize));
    }

    TextureHandle makePictureTexture(uint32_t type, uint32_t format, uint32_t internalFormat, uint8_t samples = 1)
    {
        TextureProperties properties;
        properties.type = type;
        properties.width = pictureSize;
        properties.height = pictureSize;
        properties.format = format;
        properties.internalFormat = internalFormat;
        properties.samples = samples;
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

    ShaderProgramHandle link(std::initializer_list<std::pair<uint32_t, const char*>> stages)
    {
        ShaderProgramProperties program;
        for (const auto& [stage, text] : stages)
        {
            ShaderObjectProperties properties;
            properties.stage = stage;
            properties.source = text;
            program.shaderObjects.push_back(renderer->generateShaderObjectHandle());
            run<CommandCreateShaderObject>(program.shaderObjects.back(), properties);
            EXPECT_EQ(renderer->getShaderObjectLog(program.shaderObjects.back()), "");
        }
        const ShaderProgramHandle handle = renderer->generateShaderProgramHandle();
        run<CommandCreateShaderProgram>(handle, program);
        EXPECT_EQ(renderer->getShaderProgramLog(handle), "");
        return handle;
    }

    /// A state that draws into the target, without depth test and culling.
    Scene makeDeviceScene(const ShaderProgramHandle& program)
    {
        Scene scene;
        scene.shaderState.program = program;
        scene.shaderState.renderTarget = target;
        scene.shaderState.viewport = viewport;
        scene.gfxState.depthStencil.depthTest = false;
        scene.gfxState.rasterizer.cullMode = 0;
        return scene;
    }

    ShaderParameterHandle makeColor(const Pixel& pixel)
    {
        ShaderParameterProperties<SbVec4f> color;
        for (size_t i = 0; i < 4; ++i)
        {
            color.value[i] = static_cast<float>(pixel[i]) / 255.0f;
        }
        return makeParameter("color", color);
    }

    template <class Values> VertexBufferHandle makeVertices(const std::string& name, const Values& values,
                                                            uint8_t componentCount = 3, uint32_t divisor = 0)
    {
        VertexBufferProperties properties;
        properties.componentCount = componentCount;
        properties.divisor = divisor;
        properties.buffer = makeBuffer(values.size() * sizeof(values[0]), values.data());
        properties.name = name;
        const VertexBufferHandle handle = renderer->generateVertexBufferHandle();
        run<CommandCreateVertexBuffer>(handle, properties);
        return handle;
    }

    IndexBufferHandle makeIndices(const std::vector<uint16_t>& values)
    {
        IndexBufferProperties properties;
        properties.dataType = SbDataType::UNSIGNED_SHORT;
        properties.buffer = makeBuffer(values.size() * 2, values.data());
        const IndexBufferHandle handle = renderer->generateIndexBufferHandle();
        run<CommandCreateIndexBuffer>(handle, properties);
        return handle;
    }

    /// A strip of four vertices, drawn without indices unless one is given.
    DrawProperties makeStrip(const std::array<float, 12>& positions, const IndexBufferHandle& indexBuffer = {})
    {
        DrawProperties properties;
        properties.vertexBuffers = {makeVertices("position", positions)};
        DrawRange range;
        range.primitive = 5;
        range.count = 4;
        range.indexBuffer = indexBuffer;
        properties.ranges = {range};
        return properties;
    }

    void draw(const Scene& scene, std::initializer_list<DrawProperties> members)
    {
        const DrawHandle handle = makeDraw(scene, {});
        for (const DrawProperties& member : members)
        {
            run<CommandAddDrawProperties>(handle, makeMember(member));
        }
        run<CommandRender>(handle);
    }

    void drawColored(Scene scene, const Pixel& color, const DrawProperties& properties)
    {
        scene.shaderState.shaderParameters = {makeColor(color)};
        draw(scene, {properties});
    }

    void clear(const Pixel& pixel = black)
    {
        ClearTargetProperties properties;
        for (size_t i = 0; i < 4; ++i)
        {
            properties.colors[0][i] = static_cast<float>(pixel[i]) / 255.0f;
        }
        run<CommandClearRT>(target, properties);
    }

    Picture read(const TextureHandle& texture)
    {
        run<CommandReadbackTexture>(texture);
        Picture picture(pictureSize * pictureSize);
        renderer->readbackTexture(texture, picture.data(), picture.size() * sizeof(Pixel));
        return picture;
    }

    Picture read() { return read(colorTexture); }

    static const Pixel& at(const Picture& picture, uint32_t x, uint32_t y) { return picture[y * pictureSize + x]; }

    static size_t count(const Picture& picture, const Pixel& pixel)
    {
        return static_cast<size_t>(std::count(picture.begin(), picture.end(), pixel));
    }

    TextureHandle colorTexture;
    TextureHandle depthTexture;
    RenderTargetHandle target;
    ViewportHandle viewport;
};

template <class Renderer> class RendererDeviceTest : public RendererDevice
{
protected:
    void SetUp() override { startOnDevice<Renderer>(); }
};

using Renderers = ::testing::Types<RendererGL41, RendererGL46>;
class RendererNames
{
public:
    template <class Renderer> static std::string GetName(int index) { return index == 0 ? "GL41" : "GL46"; }
};
TYPED_TEST_SUITE(RendererDeviceTest, Renderers, RendererNames);

constexpr size_t allPixels = pictureSize * pictureSize;

TYPED_TEST(RendererDeviceTest, ClearFillsTheTarget)
{
    this->clear(red);
    EXPECT_EQ(this->count(this->read(), red), allPixels);
}

TYPED_TEST(RendererDeviceTest, TriangleCoversItsPixels)
{
    this->clear();
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    DrawProperties properties;
    properties.vertexBuffers = {this->makeVertices("position", std::array<float, 9>{-1, -1, 0, 1, -1, 0, -1, 1, 0})};
    DrawRange range;
    range.indexBuffer = this->makeIndices({2, 1, 0});
    range.count = 3;
    properties.ranges = {range};
    this->drawColored(scene, green, properties);
    const Picture picture = this->read();
    EXPECT_EQ(this->at(picture, 0, 0), green);
    EXPECT_EQ(this->at(picture, 15, 15), black);
    EXPECT_NEAR(static_cast<double>(this->count(picture, green)), allPixels / 2.0, pictureSize);
}

TYPED_TEST(RendererDeviceTest, DepthTestKeepsTheNearerOne)
{
    this->clear();
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.gfxState.depthStencil.depthTest = true;
    this->drawColored(scene, red, this->makeStrip(rectangle(-1, 1, -0.5f)));
    this->drawColored(scene, blue, this->makeStrip(rectangle(-1, 1, 0.5f)));
    EXPECT_EQ(this->count(this->read(), red), allPixels);
    // A clear of depth alone lets the farther one through.
    ClearTargetProperties depthOnly;
    depthOnly.flags = 2;
    this->template run<CommandClearRT>(this->target, depthOnly);
    this->drawColored(scene, blue, this->makeStrip(rectangle(-1, 0, 0.5f)));
    EXPECT_EQ(this->count(this->read(), blue), allPixels / 2);
}

TYPED_TEST(RendererDeviceTest, TexturesAreSampledThroughTheirSamplers)
{
    this->clear();
    const char* const fragmentText = "#version 330\n"
                                     "uniform sampler2D first;\n"
                                     "uniform sampler2D second;\n"
                                     "out vec4 result;\n"
                                     "void main() {\n"
                                     "  vec2 place = gl_FragCoord.xy / 16.0;\n"
                                     "  result = place.y < 0.5 ? texture(first, place) : texture(second, place);\n"
                                     "}\n";
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, fragmentText}}));
    const std::array<Pixel, 4> firstPixels = {red, green, red, green};
    const std::array<Pixel, 4> secondPixels = {blue, white, blue, white};
    ShaderParameterProperties<int> unit;
    SamplerProperties nearest;
    nearest.minFilter = 1;
    nearest.magFilter = 1;
    nearest.mipFilter = 0;
    const SamplerHandle sampler = this->renderer->generateSamplerHandle();
    this->template run<CommandCreateSampler>(sampler, nearest);
    for (int i = 0; i < 2; ++i)
    {
        TextureProperties properties;
        properties.width = 2;
        properties.height = 2;
        properties.data = {i == 0 ? firstPixels.data() : secondPixels.data()};
        const TextureHandle texture = this->renderer->generateTextureHandle();
        this->template run<CommandCreateTexture>(texture, properties);
        const auto textureUnit = static_cast<uint32_t>(3 * i + 1);
        scene.shaderState.textures.mask |= 1u << textureUnit;
        scene.shaderState.textures.textures[textureUnit] = texture;
        scene.shaderState.textures.samplers[textureUnit] = sampler;
        unit.value = static_cast<int>(textureUnit);
        scene.shaderState.shaderParameters.push_back(this->makeParameter(i == 0 ? "first" : "second", unit));
    }
    this->draw(scene, {this->makeStrip(rectangle(-1, 1))});
    const Picture picture = this->read();
    for (const Pixel& pixel : {red, green, blue, white})
    {
        EXPECT_EQ(this->count(picture, pixel), allPixels / 4);
    }
    EXPECT_EQ(this->at(picture, 0, 0), red);
    EXPECT_EQ(this->at(picture, 15, 15), white);
}

TYPED_TEST(RendererDeviceTest, UniformBlocksReachTheProgramByName)
{
    this->clear();
    const char* const fragmentText = "#version 330\n"
                                     "layout(std140) uniform Unused { vec4 unused; };\n"
                                     "layout(std140) uniform Own { vec4 own; };\n"
                                     "layout(std140) uniform Common { vec4 common; };\n"
                                     "out vec4 result;\n"
                                     "void main() { result = own + common + 0.0 * unused; }\n";
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, fragmentText}}));
    const auto makeBlock = [this](const std::string& name, const std::array<float, 4>& value)
    {
        ShaderBufferProperties properties;
        properties.buffer = this->makeBuffer(sizeof(value), value.data());
        properties.name = name;
        const ShaderBufferHandle handle = this->renderer->generateShaderBufferHandle();
        this->template run<CommandCreateShaderBuffer>(handle, properties);
        return handle;
    };
    scene.shaderState.shaderBuffers = {makeBlock("Unused", {0, 0, 0, 0}), makeBlock("Common", {0, 0, 1, 1})};
    DrawProperties left = this->makeStrip(rectangle(-1, 0));
    left.shaderBuffers = {makeBlock("Own", {1, 0, 0, 0})};
    DrawProperties right = this->makeStrip(rectangle(0, 1));
    right.shaderBuffers = {makeBlock("Own", {0, 1, 0, 0})};
    this->draw(scene, {left});
    this->draw(scene, {right});
    const Picture picture = this->read();
    EXPECT_EQ(this->count(picture, Pixel{255, 0, 255, 255}), allPixels / 2);
    EXPECT_EQ(this->count(picture, Pixel{0, 255, 255, 255}), allPixels / 2);
}

TYPED_TEST(RendererDeviceTest, BlitResolvesAMultisampledTarget)
{
    this->clear();
    const TextureHandle samples = this->makePictureTexture(texture2DMultisample, rgbaFormat, rgba8, 4);
    const RenderTargetHandle source = this->makeTarget({{samples, 0}});
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.shaderState.renderTarget = source;
    this->template run<CommandClearRT>(source, ClearTargetProperties());
    this->drawColored(scene, white, this->makeStrip(rectangle(-1, 0.0625f)));
    BlitProperties blit;
    blit.source = SbVec4i32(0, 0, 16, 16);
    blit.destination = blit.source;
    this->template run<CommandBlit>(source, this->target, blit);
    const Picture picture = this->read();
    EXPECT_EQ(this->count(picture, white), allPixels / 2);
    EXPECT_EQ(this->count(picture, black), allPixels / 2 - pictureSize);
    EXPECT_GT(this->at(picture, 8, 8)[0], 0) << "the edge is a mixture";
    EXPECT_LT(this->at(picture, 8, 8)[0], 255);
}

TYPED_TEST(RendererDeviceTest, OverallAttributesHoldForAllVertices)
{
    this->clear();
    const char* const vertexText = "#version 330\n"
                                   "in vec3 position;\n"
                                   "in vec4 tint;\n"
                                   "out vec4 passed;\n"
                                   "void main() { passed = tint; gl_Position = vec4(position, 1); }\n";
    const char* const fragmentText = "#version 330\n"
                                     "in vec4 passed;\n"
                                     "out vec4 result;\n"
                                     "void main() { result = passed; }\n";
    const Scene scene = this->makeDeviceScene(this->link({{0, vertexText}, {2, fragmentText}}));
    const auto tinted = [](DrawProperties properties, const Pixel& pixel)
    {
        OverallAttribute attribute;
        attribute.name = "tint";
        attribute.dataType = SbDataType::UNSIGNED_BYTE;
        attribute.normalized = 1;
        std::memcpy(attribute.value, pixel.data(), pixel.size());
        properties.overallAttributes = {attribute};
        return properties;
    };
    const DrawProperties left = tinted(this->makeStrip(rectangle(-1, 0)), red);
    const DrawProperties right = tinted(this->makeStrip(rectangle(0, 1)), blue);
    this->draw(scene, {left});
    this->draw(scene, {right});
    const Picture separate = this->read();
    EXPECT_EQ(this->count(separate, red), allPixels / 2);
    EXPECT_EQ(this->count(separate, blue), allPixels / 2);
    this->clear();
    this->draw(scene, {left, right});
    EXPECT_EQ(this->read(), separate);
}

TYPED_TEST(RendererDeviceTest, MergedMembersShowTheSamePicture)
{
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    Scene colored = scene;
    colored.shaderState.shaderParameters = {this->makeColor(green)};
    const IndexBufferHandle indices = this->makeIndices({0, 1, 2, 3});
    const DrawProperties first = this->makeStrip(rectangle(-1, -0.75f), indices);
    const DrawProperties second = this->makeStrip(rectangle(-0.25f, 0.125f), this->makeIndices({3, 2, 1, 0}));
    DrawProperties third = this->makeStrip(rectangle(0.5f, 0.625f));
    DrawRange points;
    points.primitive = 0;
    points.count = 4;
    third.ranges.push_back(points);
    this->clear();
    this->draw(colored, {first});
    this->draw(colored, {second});
    this->draw(colored, {third});
    const Picture separate = this->read();
    EXPECT_GT(this->count(separate, green), allPixels / 4);
    EXPECT_GT(this->count(separate, black), allPixels / 4);

    this->clear();
    const DrawHandle merged = this->makeDraw(colored, {});
    const DrawPropertiesHandle firstMember = this->makeMember(first);
    this->template run<CommandAddDrawProperties>(merged, firstMember);
    this->template run<CommandAddDrawProperties>(merged, this->makeMember(second));
    this->template run<CommandAddDrawProperties>(merged, this->makeMember(third));
    this->template run<CommandRender>(merged);
    EXPECT_EQ(this->read(), separate);
    this->clear();
    this->template run<CommandRender>(merged);
    EXPECT_EQ(this->read(), separate);

    // A changed source reaches the merged buffers.
    const std::array<float, 12> wider = rectangle(-1, -0.5f);
    BufferProperties properties;
    properties.size = sizeof(wider);
    properties.data = wider.data();
    const VertexBufferHandle source = first.vertexBuffers[0];
    VertexBufferProperties view;
    view.componentCount = 3;
    view.name = "position";
    view.buffer = this->makeBuffer(sizeof(wider), wider.data());
    this->template run<CommandUpdateVertexBuffer>(source, view);
    this->clear();
    this->template run<CommandRender>(merged);
    EXPECT_EQ(this->count(this->read(), green), this->count(separate, green) + 2 * pictureSize);
    this->template run<CommandDestroyDraw>(merged);
}

TYPED_TEST(RendererDeviceTest, InstancesStartAtTheirBase)
{
    this->clear();
    const char* const vertexText = "#version 330\n"
                                   "in vec3 position;\n"
                                   "in float shift;\n"
                                   "void main() { gl_Position = vec4(position.x + shift, position.yz, 1); }\n";
    const Scene scene = this->makeDeviceScene(this->link({{0, vertexText}, {2, colorFragmentText}}));
    DrawProperties properties = this->makeStrip(rectangle(-1, -0.75f));
    properties.vertexBuffers.push_back(
        this->makeVertices("shift", std::array<float, 4>{0.0f, 0.5f, 1.0f, 1.5f}, 1, 1));
    properties.ranges[0].instanceCount = 2;
    properties.ranges[0].baseInstance = 1;
    this->drawColored(scene, red, properties);
    const Picture picture = this->read();
    EXPECT_EQ(this->count(picture, red), 4 * pictureSize);
    EXPECT_EQ(this->at(picture, 0, 0), black);
    EXPECT_EQ(this->at(picture, 4, 0), red);
    EXPECT_EQ(this->at(picture, 8, 0), red);
    EXPECT_EQ(this->at(picture, 12, 0), black);
}

TYPED_TEST(RendererDeviceTest, RestartIndexEndsAStrip)
{
    this->clear();
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    DrawProperties properties;
    std::vector<float> positions;
    for (const auto& strip : {rectangle(-1, -0.5f), rectangle(0.5f, 1)})
    {
        positions.insert(positions.end(), strip.begin(), strip.end());
    }
    properties.vertexBuffers = {this->makeVertices("position", positions)};
    DrawRange range;
    range.primitive = 5;
    range.indexBuffer = this->makeIndices({0, 1, 2, 3, 9999, 4, 5, 6, 7});
    range.count = 9;
    range.primitiveRestart = true;
    range.primitiveRestartValue = 9999;
    properties.ranges = {range};
    this->drawColored(scene, red, properties);
    EXPECT_EQ(this->count(this->read(), red), 8 * pictureSize);
}

TYPED_TEST(RendererDeviceTest, ComputeWritesItsStorageBuffer)
{
    const char* const text = "#version 430\n"
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

TYPED_TEST(RendererDeviceTest, FeedbackCapturesOutputs)
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

TYPED_TEST(RendererDeviceTest, QueryCountsSamples)
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

struct FixedFunctionTask : TaskInterface
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

TYPED_TEST(RendererDeviceTest, RenderTaskDrawsWithFixedFunctionAndTheNextDrawIsRight)
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

/// A framebuffer of the host application, with colour and combined depth and stencil, bound.
class HostFramebuffer
{
public:
    HostFramebuffer()
    {
        glGenTextures(1, &m_color);
        glBindTexture(GL_TEXTURE_2D, m_color);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, pictureSize, pictureSize, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glGenTextures(1, &m_depth);
        glBindTexture(GL_TEXTURE_2D, m_depth);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH24_STENCIL8, pictureSize, pictureSize, 0, GL_DEPTH_STENCIL,
                     GL_UNSIGNED_INT_24_8, nullptr);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenFramebuffers(1, &m_framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_color, 0);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D, m_depth, 0);
        glDisable(GL_SCISSOR_TEST);
        glDisable(GL_BLEND);
        glDisable(GL_CULL_FACE);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glEnable(GL_DEPTH_TEST);
        glDepthMask(GL_TRUE);
        glDepthFunc(GL_ALWAYS);
    }
    ~HostFramebuffer()
    {
        glDeleteFramebuffers(1, &m_framebuffer);
        glDeleteTextures(1, &m_color);
        glDeleteTextures(1, &m_depth);
    }
    HostFramebuffer(const HostFramebuffer&) = delete;
    HostFramebuffer& operator=(const HostFramebuffer&) = delete;

    static Picture readColor()
    {
        Picture picture(allPixels);
        glReadPixels(0, 0, pictureSize, pictureSize, GL_RGBA, GL_UNSIGNED_BYTE, picture.data());
        return picture;
    }

    static float readDepth(GLint x, GLint y)
    {
        float depth = 0.0f;
        glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        return depth;
    }

private:
    GLuint m_framebuffer = 0;
    GLuint m_color = 0;
    GLuint m_depth = 0;
};

TYPED_TEST(RendererDeviceTest, PresentCarriesColourAndDepthToTheBoundFramebuffer)
{
    this->clear(red);
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.gfxState.depthStencil.depthTest = true;
    this->drawColored(scene, green, this->makeStrip(rectangle(-1, 0, -0.5f)));
    this->renderer->finish();
    this->renderer->setPresentColorTexture(this->colorTexture);
    this->renderer->setPresentDepthTexture(this->depthTexture);
    this->renderer->setSize(pictureSize, pictureSize);

    const HostFramebuffer host;
    this->renderer->finishFrame();
    for (int i = 0; i < 2; ++i)
    {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        EXPECT_TRUE(this->renderer->present());
        this->renderer->presentFrameSync();
        const Picture picture = host.readColor();
        EXPECT_EQ(this->count(picture, green), allPixels / 2);
        EXPECT_EQ(this->count(picture, red), allPixels / 2);
        EXPECT_NEAR(host.readDepth(0, 0), 0.25f, 0.001f);
        EXPECT_NEAR(host.readDepth(15, 0), 1.0f, 0.001f);
        this->renderer->begin();
    }
}

TYPED_TEST(RendererDeviceTest, ReversePresentTakesTheBoundFramebufferOver)
{
    this->clear();
    this->renderer->setPresentColorTexture(this->colorTexture);
    this->renderer->setPresentDepthTexture(this->depthTexture);
    this->renderer->setSize(pictureSize, pictureSize);
    const HostFramebuffer host;
    glClearColor(0, 0, 1, 1);
    glClearDepth(0.5);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    this->renderer->getReversePresentFrame()->reversePresentFrame(this->renderer->updatePresentEventArg());
    this->renderer->presentFrameSync();
    this->renderer->begin();
    EXPECT_EQ(this->count(this->read(), blue), allPixels);
    // The depth came too: only what is nearer shows.
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.gfxState.depthStencil.depthTest = true;
    this->drawColored(scene, red, this->makeStrip(rectangle(-1, 0, -0.5f)));
    this->drawColored(scene, green, this->makeStrip(rectangle(0, 1, 0.5f)));
    const Picture picture = this->read();
    EXPECT_EQ(this->count(picture, red), allPixels / 2);
    EXPECT_EQ(this->count(picture, blue), allPixels / 2);
}

TYPED_TEST(RendererDeviceTest, NothingLivesAfterDestroy)
{
    this->clear();
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    const DrawProperties strip = this->makeStrip(rectangle(-1, 1));
    this->draw(scene, {strip, strip});
    this->renderer->finish();
    this->renderer->destroy();
    for (GLuint name = 1; name < 64; ++name)
    {
        EXPECT_FALSE(glIsBuffer(name) || glIsTexture(name) || glIsFramebuffer(name) || glIsProgram(name) ||
                     glIsShader(name) || glIsVertexArray(name))
            << name;
    }
}

class RendererGL46DeviceTest : public RendererDeviceTest<RendererGL46>
{
protected:
    ShaderBufferHandle makeBlock(const std::string& name, const std::array<float, 4>& value)
    {
        ShaderBufferProperties properties;
        properties.buffer = makeBuffer(sizeof(value), value.data());
        properties.name = name;
        const ShaderBufferHandle handle = renderer->generateShaderBufferHandle();
        run<CommandCreateShaderBuffer>(handle, properties);
        return handle;
    }
};

const char* const mergedVertexText = R"(#version 430
in vec3 position;
in float KvrAttribDrawIndex;
uniform int KvrUseMergedShaderBuffers;
layout(std140) uniform Transform { vec4 shift; };
layout(std140) uniform TransformIndirectBuffer { ivec4 transformIndices[3]; };
layout(std140) uniform TransformMergedBuffer { vec4 shifts[3]; };
flat out int member;
void main()
{
    member = floatBitsToInt(KvrAttribDrawIndex);
    vec4 move = KvrUseMergedShaderBuffers != 0 ? shifts[transformIndices[member].x] : shift;
    gl_Position = vec4(position + move.xyz, 1);
}
)";

const char* const mergedFragmentText = R"(#version 430
flat in int member;
uniform int KvrUseMergedShaderBuffers;
layout(std140) uniform Material { vec4 tint; };
layout(std140) uniform MaterialIndirectBuffer { ivec4 materialIndices[3]; };
layout(std140) uniform MaterialMergedBuffer { vec4 tints[2]; };
out vec4 result;
void main()
{
    result = KvrUseMergedShaderBuffers != 0 ? tints[materialIndices[member].x] : tint;
}
)";

TEST_F(RendererGL46DeviceTest, MergedMembersKeepTheirTransformsAndMaterials)
{
    const Scene scene = makeDeviceScene(link({{0, mergedVertexText}, {2, mergedFragmentText}}));
    const ShaderBufferHandle redMaterial = makeBlock("Material", {1, 0, 0, 1});
    const ShaderBufferHandle blueMaterial = makeBlock("Material", {0, 0, 1, 1});
    const DrawProperties strip = makeStrip(rectangle(-1, -0.5f));
    const auto member = [&](float shift, const ShaderBufferHandle& material)
    {
        DrawProperties properties = strip;
        properties.shaderBuffers = {ShaderBufferHandle(), makeBlock("Transform", {shift, 0, 0, 0}), material};
        return properties;
    };
    const DrawProperties first = member(0.0f, redMaterial);
    const DrawProperties second = member(0.5f, blueMaterial);
    const DrawProperties third = member(1.5f, redMaterial);
    clear();
    draw(scene, {first});
    draw(scene, {second});
    draw(scene, {third});
    const Picture separate = read();
    EXPECT_EQ(count(separate, red), allPixels / 2);
    EXPECT_EQ(count(separate, blue), allPixels / 4);
    clear();
    draw(scene, {first, second, third});
    EXPECT_EQ(read(), separate);
}

TEST_F(RendererGL46DeviceTest, ComputeWritesThroughAnImage)
{
    const char* const text = "#version 430\n"
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

/// No fixed function, no point sprites, no array 0.
class RendererCoreDeviceTest : public RendererDevice
{
protected:
    RendererCoreDeviceTest() : RendererDevice(GLProfile::Core) {}
    void SetUp() override { startOnDevice<RendererGL46>(); }
};

TEST_F(RendererCoreDeviceTest, DrawsAndPresentsInACoreContext)
{
    clear(red);
    Scene scene = makeDeviceScene(link({{0, plainVertexText}, {2, colorFragmentText}}));
    const DrawProperties strip = makeStrip(rectangle(-1, 0));
    drawColored(scene, green, strip);
    renderer->finish();
    renderer->setPresentColorTexture(colorTexture);
    renderer->setPresentDepthTexture(depthTexture);
    renderer->setSize(pictureSize, pictureSize);
    const HostFramebuffer host;
    renderer->finishFrame();
    renderer->present();
    renderer->presentFrameSync();
    EXPECT_EQ(count(host.readColor(), green), allPixels / 2);
}

/// What a context offers that stops at 4.1.
class RendererOldDeviceTest : public RendererDevice
{
protected:
    RendererOldDeviceTest() : RendererDevice(GLProfile::Compatibility, GLVersion::Limited41) {}
    void SetUp() override { startOnDevice<RendererGL41>(); }
};

TEST_F(RendererOldDeviceTest, DrawsMergedAndUnmergedInAContextOf41)
{
    Scene scene = makeDeviceScene(link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.shaderState.shaderParameters = {makeColor(green)};
    const DrawProperties left = makeStrip(rectangle(-1, -0.5f));
    const DrawProperties right = makeStrip(rectangle(0.5f, 1));
    clear(red);
    draw(scene, {left});
    draw(scene, {right});
    const Picture separate = read();
    EXPECT_EQ(count(separate, green), allPixels / 2);
    clear(red);
    draw(scene, {left, right});
    EXPECT_EQ(read(), separate);
}

} // namespace
} // namespace renderengine
