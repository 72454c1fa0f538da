// The formats that assimp reads: well-formed models, malformed ones, and those without a triangle.

#include "ViewerProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

INSTANTIATE_TEST_SUITE_P(Formats, ViewerModelDeviceTest,
                         testing::Values("glTF2/BoxTextured-glTF-Embedded/BoxTextured.gltf",
                                         "glTF2/ClearCoat-glTF/ClearCoatTest.gltf", "OBJ/spider.obj", "OBJ/box.obj",
                                         "OBJ/cube_with_vertexcolors.obj", "STL/Spider_binary.stl", "STL/Wuson.stl",
                                         "PLY/Wuson.ply", "Collada/duck.dae", "Collada/teapot_instancenodes.DAE",
                                         "3DS/cubes_with_alpha.3DS", "FBX/spider.fbx", "X/Testwuson.X", "OFF/Wuson.off",
                                         "LWO/LWO2/boxuv.lwo", "BLEND/Suzanne_248.blend", "AC/Wuson.ac",
                                         "DXF/wuson.dxf"),
                         nameOfModel);

INSTANTIATE_TEST_SUITE_P(Formats, ViewerMalformedModel,
                         testing::Values("invalid/empty.obj", "invalid/empty.ply", "invalid/malformed.obj",
                                         "invalid/malformed2.obj", "OFF/invalid.off",
                                         "glTF2/IndexOutOfRange/IndexOutOfRange.gltf",
                                         "glTF2/IndexOutOfRange/AllIndicesOutOfRange.gltf",
                                         "glTF2/wrongTypes/badArray.gltf", "glTF2/MissingBin/BoxTextured.gltf",
                                         "glTF2/RecursiveNodes/RecursiveNodes.gltf",
                                         "glTF2/TestNoRootNode/NoScene.gltf"),
                         nameOfModel);

TEST(ViewerFormats, RefusesModelOfPointsOnly)
{
    const ScratchFolder folder;
    writeText(folder / "points.ply", "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
                                     "property float z\nend_header\n0 0 0\n1 1 1\n");
    const ViewerRun run = runViewer(folder, {"points.ply"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(lineCount(run.error), 1u) << run.error;
}

TEST(ViewerFormats, RefusesModelOfLinesOnly)
{
    const ScratchFolder folder;
    writeText(folder / "line.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nl 1 2\nl 2 3\n");
    expectRefused(folder, {"line.obj"}, "line.obj");
}

// A sanitizer reserves more address space than the limit leaves.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(ViewerFormats, RefusesModelThatNeedsMoreMemoryThanThereIs)
{
    const ScratchFolder folder;
    const ViewerRun run = runViewer(folder, {testModel("invalid/OutOfMemory.off")},
                                    {"sh", "-c", "ulimit -v 4000000 && exec \"$@\"", "sh"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(lineCount(run.error), 1u) << run.error;
}
#endif
