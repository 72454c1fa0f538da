// The viewer on real models: pictures, figures and options.

#include "ViewerProgram.h"

#include "support/ImageCompare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

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

} // namespace

class ViewerModelDeviceTest : public testing::TestWithParam<const char*>
{
};

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

INSTANTIATE_TEST_SUITE_P(Package, ViewerModelDeviceTest,
                         testing::Values(c_engine, "glTF2/BoxTextured-glTF-Binary/BoxTextured.glb",
                                         "glTF2/BoxTextured-glTF-Embedded/BoxTextured.gltf",
                                         "glTF2/ClearCoat-glTF/ClearCoatTest.gltf", "OBJ/spider.obj", "OBJ/box.obj",
                                         "OBJ/cube_with_vertexcolors.obj", "STL/Spider_binary.stl", "STL/Wuson.stl",
                                         "PLY/Wuson.ply", "Collada/duck.dae", "Collada/teapot_instancenodes.DAE",
                                         "3DS/cubes_with_alpha.3DS", "FBX/spider.fbx", "X/Testwuson.X", "OFF/Wuson.off",
                                         "LWO/LWO2/boxuv.lwo", "BLEND/Suzanne_248.blend", "AC/Wuson.ac",
                                         "DXF/wuson.dxf"),
                         nameOfModel);

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
    const ViewerRun run = runViewer(folder, {testModel("OBJ/box.obj"), "--size", "16x16", "--frames", "4"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("12 triangles, 1 meshes, 1 draws"));
    EXPECT_THAT(run.out, HasSubstr("of 3 frames"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.png"));
}

TEST(ViewerDeviceTest, PictureIsUpright)
{
    // A triangle that stands on its base: its lower half is wider than its upper half.
    const ScratchFolder folder;
    std::filesystem::create_directories(folder.path());
    FILE* file = std::fopen((folder / "triangle.obj").string().c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fputs("v -1 0 0\nv 1 0 0\nv 0 2 0\nf 1 2 3\n", file);
    std::fclose(file);
    ASSERT_EQ(runViewer(folder, {"triangle.obj", "--size", "64x64", "-o", "a.png"}).exitCode, 0);
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
    ASSERT_EQ(runViewer(folder, {testModel("OBJ/box.obj"), "--size", "64x64", "-o", "a.png"}).exitCode, 0);
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
    EXPECT_THAT(run.out, HasSubstr("EGL on "));
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
