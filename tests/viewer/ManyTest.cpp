// renderengine-many: the same cubes merged and one by one, on both renderers.

#include "ViewerProgram.h"

#include "support/ImageCompare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using testing::HasSubstr;

namespace
{

using renderengine::testing::Image;
using renderengine::testing::loadPng;

Image drawMany(const ScratchFolder& folder, std::vector<std::string> arguments)
{
    arguments.insert(arguments.end(), {"--size", "160x100", "--frames", "2", "-o", "many.png"});
    const ViewerRun run = runMany(folder, arguments);
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(run.error, "");
    return loadPng((folder / "many.png").string());
}

} // namespace

TEST(ManyDeviceTest, MergedAndSingleDrawsGiveTheSamePictureOnBothRenderers)
{
    const ScratchFolder folder;
    const Image merged = drawMany(folder, {"300"});
    EXPECT_EQ(merged.pixels, drawMany(folder, {"300", "--no-merging"}).pixels);
    EXPECT_EQ(merged.pixels, drawMany(folder, {"300", "--renderer", "GL41"}).pixels);
    EXPECT_EQ(merged.pixels, drawMany(folder, {"300", "--renderer", "GL41", "--no-merging"}).pixels);
}

TEST(ManyDeviceTest, EachCubeHasItsOwnPlaceAndColor)
{
    const ScratchFolder folder;
    const Image image = drawMany(folder, {"64"});
    std::set<std::vector<uint8_t>> colors;
    std::size_t covered = 0;
    for (std::size_t at = 0; at < image.pixels.size(); at += 4)
    {
        const std::vector<uint8_t> pixel(image.pixels.begin() + static_cast<std::ptrdiff_t>(at),
                                         image.pixels.begin() + static_cast<std::ptrdiff_t>(at + 4));
        colors.insert(pixel);
        covered += !std::equal(pixel.begin(), pixel.end(), image.pixels.begin());
    }
    EXPECT_GT(colors.size(), 256u);
    EXPECT_GT(covered, image.pixels.size() / 4 / 5);
    EXPECT_LT(covered, image.pixels.size() / 4);
}

TEST(ManyDeviceTest, SplitsWhatDoesNotFitIntoOneUniformBlock)
{
    // The device's uniform blocks hold 1024 transforms of 64 bytes.
    const ScratchFolder folder;
    const ViewerRun run = runMany(folder, {"1030", "--explain", "--size", "160x100", "--frames", "1"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("(geometries: 1030, ranges: 1030, batches: 2, draw calls: 2)"));
    EXPECT_EQ(loadPng((folder / "many.png").string()).pixels, drawMany(folder, {"1030", "--no-merging"}).pixels);
}

TEST(ManyDeviceTest, TellsFrameTimes)
{
    const ScratchFolder folder;
    const ViewerRun run = runMany(folder, {"--count", "10", "--size", "16x16", "--frames", "4"});
    ASSERT_EQ(run.exitCode, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("renderer GL (cubes: 10, draws: 1)"));
    EXPECT_THAT(run.out, HasSubstr("of 3 frames, first frame "));
}

TEST(ManyTest, RefusesWhatCannotBeDrawn)
{
    const ScratchFolder folder;
    EXPECT_EQ(runMany(folder, {"0"}).exitCode, 2);
    const ViewerRun run = runMany(folder, {"10", "--renderer", "GL99"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.error,
                HasSubstr("renderengine-many: the renderer 'GL99' is not known; there are GL, GL41, NULL and LOG."));
    EXPECT_EQ(lineCount(run.error), 1u);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}
