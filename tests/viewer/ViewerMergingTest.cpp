// The viewer draws meshes of the same state merged or one by one: the same picture, and it tells which it did.

#include "ViewerProgram.h"

#include "support/ImageCompare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

using testing::HasSubstr;
using testing::Not;

namespace
{

using renderengine::testing::loadPng;

const char* const c_engine = "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb";

} // namespace

class ViewerMergingDeviceTest : public testing::TestWithParam<std::tuple<std::string, std::string>>
{
};

TEST_P(ViewerMergingDeviceTest, MergedPictureIsThatOfSingleDraws)
{
    const auto [model, renderer] = GetParam();
    const ScratchFolder folder;
    const std::vector<std::string> arguments = {testModel(model), "--size", "200x150", "--renderer", renderer, "-o"};
    std::vector<std::string> merged = arguments;
    merged.push_back("merged.png");
    std::vector<std::string> single = arguments;
    single.insert(single.end(), {"single.png", "--no-merging"});
    const ViewerRun mergedRun = runViewer(folder, merged);
    const ViewerRun singleRun = runViewer(folder, single);
    ASSERT_EQ(mergedRun.exitCode, 0) << mergedRun.error;
    ASSERT_EQ(singleRun.exitCode, 0) << singleRun.error;
    EXPECT_EQ(loadPng((folder / "merged.png").string()).pixels, loadPng((folder / "single.png").string()).pixels);
}

// Many meshes; transparent ones; textures; instances of one mesh; colours; several textures.
INSTANTIATE_TEST_SUITE_P(Package, ViewerMergingDeviceTest,
                         testing::Combine(testing::Values(c_engine, "3DS/cubes_with_alpha.3DS", "OBJ/spider.obj",
                                                          "Collada/teapot_instancenodes.DAE",
                                                          "OBJ/cube_with_vertexcolors.obj", "FBX/spider.fbx"),
                                          testing::Values("GL", "GL41")),
                         [](const auto& instance)
                         {
                             const testing::TestParamInfo<const char*> model(std::get<0>(instance.param).c_str(), 0);
                             return nameOfModel(model) + "_" + std::get<1>(instance.param);
                         });

TEST(ViewerMergingTest, MeshesOfOneStateAreOneDraw)
{
    const ScratchFolder folder;
    const ViewerRun merged = runViewer(folder, {testModel(c_engine), "--size", "16x16"});
    EXPECT_THAT(merged.out, HasSubstr("meshes: 34, draws: 1)"));
    const ViewerRun single = runViewer(folder, {testModel(c_engine), "--size", "16x16", "--no-merging"});
    EXPECT_THAT(single.out, Not(HasSubstr(" 1 draws")));
}

TEST(ViewerMergingTest, ExplainsMergedDraws)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel(c_engine), "--size", "16x16", "--explain", "--frames", "3"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, testing::ContainsRegex("draw 0 is merged .geometries: [0-9]+, ranges: [0-9]+, batches: 1, "
                                                "draw calls: 1.\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("not merged")));
    EXPECT_EQ(lineCount(run.out), 4u) << "a draw is told when it is prepared, not in each frame: " << run.out;
    EXPECT_EQ(run.error, "");
}

TEST(ViewerMergingTest, ExplainsWhyDrawsAreNotMerged)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel("OBJ/box.obj"), "--size", "16x16", "--explain", "--no-merging"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("draw 0 is not merged: its one geometry has at most one range\n"));
    EXPECT_EQ(run.error, "");
}

TEST(ViewerMergingTest, ExplainsBesideInfo)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel(c_engine), "--size", "16x16", "--explain", "--info"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("draw 0 is merged"));
    EXPECT_THAT(run.out, HasSubstr("EGL on "));
    EXPECT_EQ(run.error, "");
}
