// What the viewer's own loader says about files that it cannot use.

#include "GlbModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace
{

using testing::HasSubstr;

std::string pathOf(const std::string& name)
{
    return std::string(ASSIMP_MODELS) + "/" + name;
}

class BrokenGlb : public testing::Test
{
protected:
    // Cases run at the same time, each with a file of its own.
    BrokenGlb()
        : m_file(std::filesystem::path(testing::TempDir()) /
                 (std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".glb"))
    {
    }
    ~BrokenGlb() override { std::filesystem::remove(m_file); }

    /// The message about a file of these bytes.
    std::string refusal(const std::string& bytes)
    {
        std::ofstream(m_file, std::ios::binary) << bytes;
        try
        {
            viewer::loadGlb(m_file.string());
        }
        catch (const viewer::ModelError& error)
        {
            return error.what();
        }
        return "";
    }

    static std::string wholeFile()
    {
        std::ifstream file(pathOf("glTF2/BoxTextured-glTF-Binary/BoxTextured.glb"), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path m_file;
};

TEST_F(BrokenGlb, EveryTruncationIsRefused)
{
    const std::string whole = wholeFile();
    ASSERT_GT(whole.size(), 2000u);
    for (std::size_t length = 1; length < whole.size(); length += 97)
        EXPECT_THAT(refusal(whole.substr(0, length)), HasSubstr("cannot be read as a model")) << length;
}

TEST_F(BrokenGlb, OtherFilesAreRefused)
{
    EXPECT_THAT(refusal("no model at all, but long enough"), HasSubstr("it is no binary glTF 2.0 file"));
    EXPECT_THAT(refusal(""), HasSubstr("is empty"));
}

TEST_F(BrokenGlb, MalformedDescriptionsAreRefusedOrDrawnWithoutACrash)
{
    const std::string whole = wholeFile();
    int refused = 0;
    // The description lies at the start.
    for (std::size_t place = 20; place < 1500; place += 3)
    {
        std::string changed = whole;
        changed[place] = '9';
        refused += refusal(changed).empty() ? 0 : 1;
    }
    EXPECT_GT(refused, 50);
}

} // namespace
