#include "RendererDeviceFixture.h"

#include "support/ImageCompare.h"

#include <kavelor/SoGraphicalTestSingleton.h>

#include <cstdio>

namespace renderengine
{
namespace
{

template <class Renderer> class RendererCaptureDeviceTest : public BothRenderersDevice<Renderer>
{
protected:
    void TearDown() override
    {
        for (const SbString& path : graphicalTest.getWrittenFiles())
        {
            std::remove(path.getString());
        }
        graphicalTest.reset();
        BothRenderersDevice<Renderer>::TearDown();
    }

    /// A target whose colours are these bytes, rows from the bottom up.
    RenderTargetHandle makeTargetOf(const std::vector<uint8_t>& bytes, uint32_t width, uint32_t height)
    {
        TextureProperties properties;
        properties.width = width;
        properties.height = height;
        properties.data = {bytes.data()};
        const TextureHandle texture = this->renderer->generateTextureHandle();
        this->template run<CommandCreateTexture>(texture, properties);
        return this->makeTarget({{texture, 0}});
    }

    SoGraphicalTestSingleton& graphicalTest = SoGraphicalTestSingleton::getInstance();
};

TYPED_TEST_SUITE(RendererCaptureDeviceTest, Renderers, RendererNames);

TYPED_TEST(RendererCaptureDeviceTest, TheCapturedPictureStandsUpright)
{
    // Five rows, so that the middle one stays where it is.
    constexpr uint32_t width = 3;
    for (const uint32_t height : {5u, 4u, 1u})
    {
        SCOPED_TRACE(height);
        const auto bytes = this->pattern(size_t{width} * height * 4, height);
        this->renderer->setPresentRenderTarget(this->makeTargetOf(bytes, width, height));
        this->renderer->setSize(width, height);
        this->graphicalTest.setOutput(::testing::TempDir().c_str(), "upright_");
        this->graphicalTest.requestFrame(height);
        this->renderer->captureFrame(height);
        const std::string path = this->graphicalTest.getFilePath(height).getString();
        const auto image = ::renderengine::testing::loadPng(path);
        ASSERT_EQ(image.width, static_cast<int>(width));
        ASSERT_EQ(image.height, static_cast<int>(height));
        constexpr ptrdiff_t rowBytes = width * 4;
        for (uint32_t row = 0; row < height; ++row)
        {
            const auto first = bytes.begin() + static_cast<ptrdiff_t>(height - 1 - row) * rowBytes;
            const auto written = image.pixels.begin() + static_cast<ptrdiff_t>(row) * rowBytes;
            EXPECT_EQ(std::vector<uint8_t>(written, written + rowBytes), std::vector<uint8_t>(first, first + rowBytes))
                << "row " << row;
        }
    }
}

TYPED_TEST(RendererCaptureDeviceTest, TheCaptureReadsThePresentTargetAlsoWhenAnotherIsBound)
{
    const std::vector<uint8_t> bytes = this->pattern(2 * 2 * 4);
    const RenderTargetHandle presented = this->makeTargetOf(bytes, 2, 2);
    this->clear(red);
    this->renderer->setPresentRenderTarget(presented);
    this->renderer->setSize(2, 2);
    this->graphicalTest.setOutput(::testing::TempDir().c_str(), "presented_");
    this->graphicalTest.requestFrame(1);
    this->renderer->captureFrame(1);
    const auto image = ::renderengine::testing::loadPng(this->graphicalTest.getFilePath(1).getString());
    EXPECT_EQ(std::vector<uint8_t>(image.pixels.begin() + 8, image.pixels.end()),
              std::vector<uint8_t>(bytes.begin(), bytes.begin() + 8));
    // What is drawn afterwards reaches its own target still.
    this->clear(green);
    EXPECT_EQ(this->count(this->read(), green), allPixels);
}

} // namespace
} // namespace renderengine
