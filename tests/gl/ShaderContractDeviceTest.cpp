// The example of docs/shader-contract.md works as the document tells.

#include "ShaderContractExample.h"

#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "gl/RendererGL46.h"
#include "support/LogLines.h"

#include <gtest/gtest.h>
#include <kavelor/SoPreferences.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace renderengine
{
namespace
{

using Pixel = std::array<uint8_t, 4>;

constexpr Pixel black = {{0, 0, 0, 0}};
constexpr Pixel red = {{255, 0, 0, 255}};
constexpr Pixel blue = {{0, 0, 255, 255}};

class ShaderContractDeviceTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        SoPreferences::unset("KVR_ENABLE_SHADER_BUFFERS_MERGING");
        SoPreferences::unset("KVR_SHADER_BUFFERS_MERGING_USE_UBO");
        // The platform tells which way to a device it took.
        for (const std::string& line : log.take())
        {
            EXPECT_EQ(line.substr(0, 6), "info: ") << line;
        }
    }

    static size_t count(const std::vector<uint8_t>& picture, const Pixel& pixel)
    {
        size_t found = 0;
        for (size_t i = 0; i + pixel.size() <= picture.size(); i += pixel.size())
        {
            found += std::equal(pixel.begin(), pixel.end(), &picture[i]) ? 1 : 0;
        }
        return found;
    }

    static void expectSquares(const std::vector<uint8_t>& picture)
    {
        EXPECT_EQ(count(picture, red), 4u * 4 + 8 * 8);
        EXPECT_EQ(count(picture, blue), 2u * 8 * 4);
        EXPECT_EQ(count(picture, black), 256u - 80 - 64);
    }

    static void expectSquaresMergedAndNot(const char* vertexText)
    {
        ContextGL context(ContextMultithread | ContextShare);
        context.init();
        ASSERT_NE(dynamic_cast<RendererGL46*>(context.getRenderer()), nullptr);
        Squares squares(context, vertexText, fragmentText);
        const std::vector<uint8_t> separate = squares.draw(false);
        expectSquares(separate);
        EXPECT_EQ(squares.draw(true), separate);
        EXPECT_EQ(squares.draw(false), separate);
    }

    ::renderengine::testing::LogLines log;
};

TEST_F(ShaderContractDeviceTest, UniformBlocksShowTheSamePictureMergedAndNot)
{
    expectSquaresMergedAndNot(uniformVertexText);
}

TEST_F(ShaderContractDeviceTest, StorageBlocksShowTheSamePictureMergedAndNot)
{
    SoPreferences::setBool("KVR_SHADER_BUFFERS_MERGING_USE_UBO", false);
    expectSquaresMergedAndNot(storageVertexText);
}

TEST_F(ShaderContractDeviceTest, WithoutMergedBlocksAllSquaresHaveTheFirstOnes)
{
    SoPreferences::setBool("KVR_ENABLE_SHADER_BUFFERS_MERGING", false);
    ContextGL context(ContextMultithread | ContextShare);
    context.init();
    Squares squares(context, uniformVertexText, fragmentText);
    expectSquares(squares.draw(false));
    EXPECT_EQ(count(squares.draw(true), red), 4u * 4) << "one on top of the other";
}

} // namespace
} // namespace renderengine
