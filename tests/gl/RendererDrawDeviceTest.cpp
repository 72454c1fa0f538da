#include "RendererDeviceFixture.h"

namespace renderengine
{
namespace
{

template <class Renderer> class RendererDrawDeviceTest : public BothRenderersDevice<Renderer>
{
};

TYPED_TEST_SUITE(RendererDrawDeviceTest, Renderers, RendererNames);

TYPED_TEST(RendererDrawDeviceTest, ClearFillsTheTarget)
{
    this->clear(red);
    EXPECT_EQ(this->count(this->read(), red), allPixels);
}

TYPED_TEST(RendererDrawDeviceTest, TriangleCoversItsPixels)
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

TYPED_TEST(RendererDrawDeviceTest, DepthTestKeepsTheNearerOne)
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

TYPED_TEST(RendererDrawDeviceTest, TexturesAreSampledThroughTheirSamplers)
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

TYPED_TEST(RendererDrawDeviceTest, UniformBlocksReachTheProgramByName)
{
    this->clear();
    const char* const fragmentText = "#version 330\n"
                                     "layout(std140) uniform Unused { vec4 unused; };\n"
                                     "layout(std140) uniform Own { vec4 own; };\n"
                                     "layout(std140) uniform Common { vec4 base; };\n"
                                     "out vec4 result;\n"
                                     "void main() { result = own + base + 0.0 * unused; }\n";
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

TYPED_TEST(RendererDrawDeviceTest, BlitResolvesAMultisampledTarget)
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

TYPED_TEST(RendererDrawDeviceTest, InstancesStartAtTheirBase)
{
    this->clear();
    const char* const vertexText = "#version 330\n"
                                   "in vec3 position;\n"
                                   "in float shift;\n"
                                   "void main() { gl_Position = vec4(position.x + shift, position.yz, 1); }\n";
    const Scene scene = this->makeDeviceScene(this->link({{0, vertexText}, {2, colorFragmentText}}));
    DrawProperties properties = this->makeStrip(rectangle(-1, -0.75f));
    properties.vertexBuffers.push_back(this->makeVertices("shift", std::array<float, 4>{0.0f, 0.5f, 1.0f, 1.5f}, 1, 1));
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

TYPED_TEST(RendererDrawDeviceTest, RestartIndexEndsAStrip)
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

} // namespace
} // namespace renderengine
