// What the viewer says about input it cannot use: one sentence, exit status 1 (2 for wrong usage), nothing left behind.

#include "ViewerProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

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
    std::filesystem::copy_file(testModel(boxModel), whole);
    std::filesystem::resize_file(whole, 700);
    expectRefused(folder, {"whole.glb"}, "cannot be read as a model");
}

TEST(ViewerInput, RefusesSizeOfZero)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel(boxModel), "--size", "0x100"}, "the size '0x100' holds no pixel");
}

TEST(ViewerInput, RefusesMalformedSize)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel(boxModel), "--size", "wide"}, "the size 'wide' is not of the form");
}

TEST(ViewerInput, RefusesSizeBeyondTheDevice)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel(boxModel), "--size", "100000x100"}, "is beyond the device's limit of ");
}

TEST(ViewerInput, RefusesUnknownRenderer)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel(boxModel), "--renderer", "GL99"}, "the renderer 'GL99' is not known");
}

TEST(ViewerInput, RefusesOutputFolderThatDoesNotExist)
{
    const ScratchFolder folder;
    expectRefused(folder, {testModel(boxModel), "--size", "16x16", "-o", "no/where.png"},
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

// Each is either drawn or refused with one sentence, never a crash.
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

INSTANTIATE_TEST_SUITE_P(Package, ViewerMalformedModel,
                         testing::Values("glTF2/BoxWithInfinites-glTF-Binary/BoxWithInfinites.glb",
                                         "glTF2/BoxBadNormals-glTF-Binary/BoxBadNormals.glb"),
                         nameOfModel);
