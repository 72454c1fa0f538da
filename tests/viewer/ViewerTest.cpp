// The viewer on real models: pictures, figures and options.

#include "ViewerProgram.h"

#include "support/ImageCompare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

using testing::HasSubstr;
using testing::Not;

namespace
{

using renderengine::testing::Image;
using renderengine::testing::loadPng;

const char* const c_engine = "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb";

std::array<int, 3> pixel(const Image& image, int x, int y)
{
    const std::size_t at =
        4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + static_cast<std::size_t>(x));
    return {image.pixels[at], image.pixels[at + 1], image.pixels[at + 2]};
}

/// The part of the pixels that differ from the background, which the upper left corner shows.
double coverage(const Image& image)
{
    const auto background = pixel(image, 0, 0);
    int covered = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            covered += pixel(image, x, y) != background;
    return static_cast<double>(covered) / (image.width * image.height);
}

template <typename Value> void appendBytes(std::string& text, const Value& value)
{
    text.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

/// A binary glTF file with one triangle in the plane of x and y.
void writeTriangle(const std::filesystem::path& path)
{
    std::string description =
        R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],)"
        R"("meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":1}]}],)"
        R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[-1,0,0],"max":[1,2,0]},)"
        R"({"bufferView":1,"componentType":5123,"count":3,"type":"SCALAR"}],)"
        R"("bufferViews":[{"buffer":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":6}],)"
        R"("buffers":[{"byteLength":44}]})";
    description.resize((description.size() + 3) / 4 * 4, ' ');
    std::string data;
    appendBytes(data, std::array<float, 9>{-1, 0, 0, 1, 0, 0, 0, 2, 0});
    appendBytes(data, std::array<uint16_t, 4>{0, 1, 2, 0});

    std::string file = "glTF";
    appendBytes(file, uint32_t{2});
    appendBytes(file, static_cast<uint32_t>(12 + 8 + description.size() + 8 + data.size()));
    appendBytes(file, static_cast<uint32_t>(description.size()));
    file += "JSON" + description;
    appendBytes(file, static_cast<uint32_t>(data.size()));
    file.append("BIN\0", 4);
    file += data;
    std::ofstream(path, std::ios::binary) << file;
}

} // namespace

TEST_P(ViewerModelDeviceTest, DrawsAPictureInsideItsFrame)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel(GetParam()), "--size", "160x120", "-o", "out.png"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("triangles"));
    EXPECT_THAT(run.error, Not(HasSubstr("RenderEngine:"))) << "nothing is logged at the default level";
    const Image image = loadPng((folder / "out.png").string());
    ASSERT_EQ(image.width, 160);
    ASSERT_EQ(image.height, 120);
    EXPECT_GT(coverage(image), 0.01);
    EXPECT_LT(coverage(image), 0.97);
    // The camera leaves a margin: the border shows the background alone.
    const auto background = pixel(image, 0, 0);
    for (int x = 0; x < image.width; ++x)
    {
        EXPECT_EQ(pixel(image, x, 0), background) << x;
        EXPECT_EQ(pixel(image, x, image.height - 1), background) << x;
    }
}

INSTANTIATE_TEST_SUITE_P(Package, ViewerModelDeviceTest, testing::Values(c_engine, boxModel), nameOfModel);

TEST(ViewerDeviceTest, RenderersGiveTheSamePicture)
{
    const ScratchFolder folder;
    ASSERT_EQ(runViewer(folder, {testModel(c_engine), "--size", "200x150", "-o", "a.png"}).exitCode, 0);
    ASSERT_EQ(
        runViewer(folder, {testModel(c_engine), "--size", "200x150", "--renderer", "gl41", "-o", "b.png"}).exitCode, 0);
    ASSERT_EQ(runViewer(folder, {testModel(c_engine), "--size", "200x150", "--no-thread", "-o", "c.png"}).exitCode, 0);
    const Image a = loadPng((folder / "a.png").string());
    EXPECT_EQ(a.pixels, loadPng((folder / "b.png").string()).pixels);
    EXPECT_EQ(a.pixels, loadPng((folder / "c.png").string()).pixels);
}

TEST(ViewerDeviceTest, NullRendererWritesNoPicture)
{
    const ScratchFolder folder;
    const ViewerRun run =
        runViewer(folder, {testModel(c_engine), "--renderer", "NULL", "--frames", "3", "-o", "a.png"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("no picture"));
    EXPECT_FALSE(std::filesystem::exists(folder / "a.png"));
}

TEST(ViewerDeviceTest, CountsTrianglesMeshesAndDraws)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel(boxModel), "--size", "16x16", "--frames", "4"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("(triangles: 12, meshes: 1, draws: 1)"));
    EXPECT_THAT(run.out, HasSubstr("of 3 frames"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.png"));
}

TEST(ViewerDeviceTest, PictureIsUpright)
{
    // A triangle that stands on its base: its lower half is wider than its upper half.
    const ScratchFolder folder;
    writeTriangle(folder / "triangle.glb");
    ASSERT_EQ(runViewer(folder, {"triangle.glb", "--size", "64x64", "-o", "a.png"}).exitCode, 0);
    const Image image = loadPng((folder / "a.png").string());
    const auto background = pixel(image, 0, 0);
    const auto width = [&](int y)
    {
        int count = 0;
        for (int x = 0; x < image.width; ++x)
            count += pixel(image, x, y) != background;
        return count;
    };
    EXPECT_GT(width(44), width(18) + 4);
}

TEST(ViewerDeviceTest, EdgesAreSmooth)
{
    // Multisampling leaves colours between the surface's and the background's along an edge.
    const ScratchFolder folder;
    ASSERT_EQ(runViewer(folder, {testModel(boxModel), "--size", "64x64", "-o", "a.png"}).exitCode, 0);
    const Image image = loadPng((folder / "a.png").string());
    std::vector<std::array<int, 3>> colors;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            colors.push_back(pixel(image, x, y));
    std::sort(colors.begin(), colors.end());
    const auto distinct = std::unique(colors.begin(), colors.end()) - colors.begin();
    EXPECT_GT(distinct, 20);
}

TEST(ViewerDeviceTest, InfoNamesDeviceLimitsAndSettings)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {"--info"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("llvmpipe"));
    EXPECT_THAT(run.out, HasSubstr(VIEWER_PLATFORM " on "));
    EXPECT_THAT(run.out, HasSubstr("GL_KHR_debug"));
    EXPECT_THAT(run.out, HasSubstr("texture size"));
    EXPECT_THAT(run.out, HasSubstr("KVR_RENDERENGINE_RENDERER"));
    EXPECT_THAT(run.out, HasSubstr("KVR_RENDERENGINE_LOG_LEVEL"));
}

TEST(ViewerDeviceTest, DebugContextReportsNoError)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel(c_engine), "--size", "64x64", "--debug"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.error, Not(HasSubstr("ERROR")));
}
