#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kavelor/SoError.h>
#include <kavelor/SoGraphicalTestSingleton.h>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#endif
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#include <stb/stb_image.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

namespace
{

struct Image
{
    SbVec2i32 size;
    int channels = 0;
    std::vector<SbVec4ub> pixels;
};

Image readPng(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    Image image;
    unsigned char* const data =
        stbi_load_from_memory(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()),
                              &image.size[0], &image.size[1], &image.channels, 4);
    if (data)
    {
        const std::size_t count = static_cast<std::size_t>(image.size[0]) * static_cast<std::size_t>(image.size[1]);
        for (std::size_t i = 0; i < count; ++i)
        {
            image.pixels.emplace_back(static_cast<const std::uint8_t*>(data + 4 * i));
        }
        stbi_image_free(data);
    }
    return image;
}

class SoGraphicalTestSingletonTest : public testing::Test
{
protected:
    SoGraphicalTestSingletonTest()
    {
        const testing::TestInfo* const info = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = std::filesystem::temp_directory_path() / (std::string("kavelor_") + info->name());
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
        m_harness.reset();
        SoDebugError::setHandler([this](const SbString&, const SbString& message, SoDebugError::Severity)
                                 { m_complaints.push_back(message.toStdString()); });
    }

    ~SoGraphicalTestSingletonTest() override
    {
        SoDebugError::setHandler({});
        m_harness.reset();
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    SbString folder() const { return m_folder.u8string(); }

    SoGraphicalTestSingleton& m_harness = SoGraphicalTestSingleton::getInstance();
    std::vector<std::string> m_complaints;

private:
    std::filesystem::path m_folder;
};

TEST_F(SoGraphicalTestSingletonTest, OnlyRequestedFramesAreNeeded)
{
    EXPECT_FALSE(m_harness.isFrameNeeded(0));
    m_harness.requestFrame(3);
    m_harness.requestFrames({5, 8});
    EXPECT_FALSE(m_harness.isFrameNeeded(0));
    EXPECT_TRUE(m_harness.isFrameNeeded(3));
    EXPECT_TRUE(m_harness.isFrameNeeded(5));
    EXPECT_TRUE(m_harness.isFrameNeeded(8));
    EXPECT_FALSE(m_harness.isFrameNeeded(4));
}

TEST_F(SoGraphicalTestSingletonTest, WrittenFrameReadsBackTopDownWithAlpha)
{
    m_harness.setOutput(folder(), "shot_");
    m_harness.requestFrame(12);
    const SbVec2i32 size(3, 2);
    const std::vector<SbVec4ub> pixels = {{255, 0, 0, 255}, {0, 255, 0, 128}, {0, 0, 255, 0},
                                          {1, 2, 3, 4},     {10, 20, 30, 40}, {250, 251, 252, 253}};
    ASSERT_TRUE(m_harness.writeFrame(pixels.data(), size, 12));
    EXPECT_EQ(m_harness.getFilePath(12), folder() + "/shot_12.png");
    EXPECT_EQ(m_harness.getWrittenFiles(), std::vector<SbString>{m_harness.getFilePath(12)});

    const Image image = readPng(std::filesystem::u8path(m_harness.getFilePath(12).getString()));
    EXPECT_EQ(image.size, size);
    EXPECT_EQ(image.channels, 4);
    EXPECT_EQ(image.pixels, pixels);
}

TEST_F(SoGraphicalTestSingletonTest, LargeFramesReadBack)
{
    m_harness.setOutput(folder(), "");
    const SbVec2i32 size(257, 129);
    std::vector<SbVec4ub> pixels;
    for (int i = 0; i < size[0] * size[1]; ++i)
    {
        const auto byte = [i](int factor) { return static_cast<std::uint8_t>(i * factor >> 3); };
        pixels.emplace_back(byte(1), byte(7), byte(31), byte(113));
    }
    ASSERT_TRUE(m_harness.writeFrame(pixels.data(), size, 0));
    EXPECT_EQ(readPng(std::filesystem::u8path(m_harness.getFilePath(0).getString())).pixels, pixels);
}

TEST_F(SoGraphicalTestSingletonTest, WritingTakesTheRequestBack)
{
    m_harness.setOutput(folder(), "f");
    m_harness.requestFrame(1);
    const SbVec4ub pixel(1, 2, 3, 4);
    EXPECT_TRUE(m_harness.writeFrame(&pixel, SbVec2i32(1, 1), 1));
    EXPECT_FALSE(m_harness.isFrameNeeded(1));
    EXPECT_TRUE(m_complaints.empty());
}

TEST_F(SoGraphicalTestSingletonTest, AFrameThatCannotBeWrittenStaysRequested)
{
    m_harness.setOutput(folder() + "/absent", "f");
    m_harness.requestFrame(1);
    const SbVec4ub pixel(1, 2, 3, 4);
    EXPECT_FALSE(m_harness.writeFrame(&pixel, SbVec2i32(1, 1), 1));
    EXPECT_TRUE(m_harness.isFrameNeeded(1));
    EXPECT_TRUE(m_harness.getWrittenFiles().empty());
    EXPECT_EQ(m_complaints,
              std::vector<std::string>{"The file \"" + folder().toStdString() + "/absent/f1.png\" cannot be written."});
}

TEST_F(SoGraphicalTestSingletonTest, AFrameWithoutPixelsIsRefused)
{
    m_harness.setOutput(folder(), "f");
    const SbVec4ub pixel;
    EXPECT_FALSE(m_harness.writeFrame(nullptr, SbVec2i32(1, 1), 1));
    EXPECT_FALSE(m_harness.writeFrame(&pixel, SbVec2i32(0, 1), 1));
    EXPECT_FALSE(m_harness.writeFrame(&pixel, SbVec2i32(1, -1), 1));
    EXPECT_EQ(m_complaints.size(), 3u);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::u8path(m_harness.getFilePath(1).getString())));
}

TEST_F(SoGraphicalTestSingletonTest, AFrameTooLargeForTheEncoderIsRefused)
{
    m_harness.setOutput(folder(), "f");
    const SbVec4ub pixel;
    EXPECT_FALSE(m_harness.writeFrame(&pixel, SbVec2i32(100000, 100000), 1));
    EXPECT_EQ(m_complaints.size(), 1u);
}

} // namespace
