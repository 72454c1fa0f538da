// What the viewer says about input it cannot use: one sentence, exit status 1 (2 for wrong usage), nothing left behind.

#include "ViewerProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

using testing::HasSubstr;

namespace
{

void expectRefused(const ScratchFolder& folder, const std::vector<std::string>& arguments, const std::string& reason)
{
    const ViewerRun run = runViewer(folder, arguments);
    EXPECT_EQ(run.exitCode, 1) << run.error;
    EXPECT_THAT(run.error, HasSubstr(reason));
    EXPECT_EQ(lineCount(run.error), 1u) << run.error;
    EXPECT_TRUE(run.error.rfind("renderengine-view: ", 0) == 0) << run.error;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        EXPECT_FALSE(entry.path().extension() == ".png" || entry.path().extension() == ".part") << entry.path();
}

void writeText(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace

TEST(ViewerInput, RefusesMissingFile)
{
    const ScratchFolder folder;
    expectRefused(folder, {"nowhere.glb"}, "there is no file 'nowhere.glb'");
}

TEST(ViewerInput, RefusesFolder)
{
    const ScratchFolder folder;
    expectRefused(folder, {"."}, "'.' is a folder");
}

TEST(ViewerInput, RefusesEmptyFile)
{
    const ScratchFolder folder;
    writeText(folder / "empty.glb", "");
    expectRefused(folder, {"empty.glb"}, "'empty.glb' is empty");
}

TEST(ViewerInput, RefusesUnknownFormat)
{
    const ScratchFolder folder;
    writeText(folder / "notes.txt", "no model");
    expectRefused(folder, {"notes.txt"}, "cannot be read as a model");
}

TEST(ViewerInput, RefusesTruncatedModel)
{
    const ScratchFolder folder;
    const auto whole = folder / "whole.glb";
    std::filesystem::copy_file(testModel("glTF2/BoxTextured-glTF-Binary/BoxTextured.glb"), whole);
    std::filesystem::resize_file(whole, 700);
    expectRefused(folder, {"whole.glb"}, "cannot be read as a model");
}

TEST(ViewerInput, RefusesModelOfPointsOnly)
{
    const ScratchFolder folder;
    writeText(folder / "points.ply", "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
                                     "property float z\nend_header\n0 0 0\n1 1 1\n");
    const ViewerRun run = runViewer(folder, {"points.ply"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(lineCount(run.error), 1u) << run.error;
}

TEST(ViewerInput, RefusesModelOfLinesOnly)
{
    const ScratchFolder folder;
    writeText(folder / "line.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nl 1 2\nl 2 3\n");
    expectRefused(folder, {"line.obj"}, "line.obj");
}

TEST(ViewerInput, RefusesSizeOfZero)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel("OBJ/box.obj"), "--size", "0x100"}, "the size '0x100' holds no pixel");
}

TEST(ViewerInput, RefusesMalformedSize)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel("OBJ/box.obj"), "--size", "wide"}, "the size 'wide' is not of the form");
}

TEST(ViewerInput, RefusesSizeBeyondTheDevice)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel("OBJ/box.obj"), "--size", "100000x100"}, "is beyond the device's limit of ");
}

TEST(ViewerInput, RefusesUnknownRenderer)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel("OBJ/box.obj"), "--renderer", "GL99"}, "the renderer 'GL99' is not known");
}

TEST(ViewerInput, RefusesOutputFolderThatDoesNotExist)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel("OBJ/box.obj"), "--size", "16x16", "-o", "no/where.png"},
                  "'no/where.png' cannot be written");
}

TEST(ViewerInput, WrongUsageExitsWithTwo)
{
    const ScratchFolder folder;
    EXPECT_EQ(runViewer(folder, {}).exitCode, 2);
    EXPECT_EQ(runViewer(folder, {"--no-such-option"}).exitCode, 2);
    EXPECT_EQ(runViewer(folder, {"a.obj", "b.obj"}).exitCode, 2);
    EXPECT_EQ(runViewer(folder, {"a.obj", "--frames", "0"}).exitCode, 2);
}

TEST(ViewerInput, HelpExitsWithZero)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {"--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("--renderer"));
    EXPECT_EQ(run.error, "");
}

// A sanitizer reserves more address space than the limit leaves.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(ViewerInput, RefusesModelThatNeedsMoreMemoryThanThereIs)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel("invalid/OutOfMemory.off")}, "ulimit -v 4000000 && ");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(lineCount(run.error), 1u) << run.error;
}
#endif

// Models of the package that are malformed on purpose: each is either drawn or refused with one sentence, never a
// crash.
class ViewerMalformedModel : public testing::TestWithParam<const char*>
{
};

TEST_P(ViewerMalformedModel, IsDrawnOrRefusedWithoutCrash)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel(GetParam()), "--size", "32x32", "-o", "out.png"});
    ASSERT_TRUE(run.exitCode == 0 || run.exitCode == 1) << run.exitCode << "\n" << run.error;
    EXPECT_EQ(std::filesystem::exists(folder / "out.png"), run.exitCode == 0) << run.error;
    EXPECT_FALSE(std::filesystem::exists(folder / "out.png.part"));
    if (run.exitCode == 1)
    {
        EXPECT_EQ(lineCount(run.error), 1u) << run.error;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Package, ViewerMalformedModel,
    testing::Values("invalid/empty.obj", "invalid/empty.ply", "invalid/malformed.obj", "invalid/malformed2.obj",
                    "OFF/invalid.off", "glTF2/IndexOutOfRange/IndexOutOfRange.gltf",
                    "glTF2/IndexOutOfRange/AllIndicesOutOfRange.gltf", "glTF2/wrongTypes/badArray.gltf",
                    "glTF2/MissingBin/BoxTextured.gltf", "glTF2/BoxWithInfinites-glTF-Binary/BoxWithInfinites.glb",
                    "glTF2/RecursiveNodes/RecursiveNodes.gltf", "glTF2/TestNoRootNode/NoScene.gltf"),
    nameOfModel);
