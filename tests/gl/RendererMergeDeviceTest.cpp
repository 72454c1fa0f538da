#include "RendererDeviceFixture.h"

namespace renderengine
{
namespace
{

template <class Renderer> class RendererMergeDeviceTest : public BothRenderersDevice<Renderer>
{
};

TYPED_TEST_SUITE(RendererMergeDeviceTest, Renderers, RendererNames);

TYPED_TEST(RendererMergeDeviceTest, OverallAttributesHoldForAllVertices)
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

TYPED_TEST(RendererMergeDeviceTest, MergedMembersShowTheSamePicture)
{
    const Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    Scene colored = scene;
    colored.shaderState.shaderParameters = {this->makeColor(green)};
    const IndexBufferHandle indices = this->makeIndices({0, 1, 2, 3});
    const DrawProperties first = this->makeStrip(rectangle(-1, -0.75f), indices);
    const DrawProperties second = this->makeStrip(rectangle(-0.25f, 0.125f), this->makeIndices({3, 2, 1, 0}));
    DrawProperties third = this->makeStrip(rectangle(0.5f, 0.625f), indices);
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
    VertexBufferProperties view;
    view.componentCount = 3;
    view.name = "position";
    view.buffer = this->makeBuffer(sizeof(wider), wider.data());
    this->template run<CommandUpdateVertexBuffer>(first.vertexBuffers[0], view);
    this->clear();
    this->template run<CommandRender>(merged);
    EXPECT_EQ(this->count(this->read(), green), this->count(separate, green) + 2 * pictureSize);
    this->template run<CommandDestroyDraw>(merged);
}

TYPED_TEST(RendererMergeDeviceTest, AddedMemberIsSeenAtOnceAndARemovedOneGoesWithTheNextChange)
{
    Scene scene = this->makeDeviceScene(this->link({{0, plainVertexText}, {2, colorFragmentText}}));
    scene.shaderState.shaderParameters = {this->makeColor(green)};
    const std::array<float, 12> corners = rectangle(-1, -0.75f);
    const DrawProperties first = this->makeStrip(corners);
    const DrawPropertiesHandle second = this->makeMember(this->makeStrip(rectangle(-0.5f, -0.25f)));
    const DrawPropertiesHandle third = this->makeMember(this->makeStrip(rectangle(0.5f, 0.75f)));
    const DrawHandle draw = this->makeDraw(scene, {this->makeMember(first), second});
    const auto render = [&]
    {
        this->clear();
        this->template run<CommandRender>(draw);
        return this->read();
    };
    const Picture two = render();
    EXPECT_EQ(this->count(two, green), 4 * pictureSize);
    this->template run<CommandAddDrawProperties>(draw, third);
    const Picture three = render();
    EXPECT_EQ(this->count(three, green), 6 * pictureSize);
    EXPECT_EQ(this->at(three, 12, 8), green);

    this->template run<CommandRemoveDrawProperties>(draw, second);
    EXPECT_EQ(render(), three);
    VertexBufferProperties view;
    view.componentCount = 3;
    view.name = "position";
    view.buffer = this->makeBuffer(sizeof(corners), corners.data());
    this->template run<CommandUpdateVertexBuffer>(first.vertexBuffers[0], view);
    const Picture changed = render();
    EXPECT_EQ(this->count(changed, green), 4 * pictureSize);
    EXPECT_EQ(this->at(changed, 4, 8), black);
    this->template run<CommandDestroyDraw>(draw);
}

class RendererGL46MergeDeviceTest : public BothRenderersDevice<RendererGL46>
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

TEST_F(RendererGL46MergeDeviceTest, MergedMembersKeepTheirTransformsAndMaterials)
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

/// What a context offers that stops at 4.1.
class RendererOldMergeDeviceTest : public RendererDevice
{
protected:
    RendererOldMergeDeviceTest() : RendererDevice(GLProfile::Compatibility, GLVersion::Limited41) {}
    void SetUp() override { startOnDevice<RendererGL41>(); }
};

TEST_F(RendererOldMergeDeviceTest, DrawsMergedAndUnmergedInAContextOf41)
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
