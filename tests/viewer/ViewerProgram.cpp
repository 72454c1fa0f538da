#include "ViewerProgram.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <random>

namespace fs = std::filesystem;

namespace
{

std::string readText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

ViewerRun runInFolder(const ScratchFolder& folder, const std::vector<std::string>& command)
{
    // The captured streams lie outside the folder, whose contents are the program's own.
    const fs::path out = folder.path().string() + ".out";
    const fs::path error = folder.path().string() + ".err";
    ViewerRun run;
    run.exitCode = runCommand(command, folder.path(), out, error);
    run.out = readText(out);
    run.error = readText(error);
    fs::remove(out);
    fs::remove(error);
    return run;
}

} // namespace

ScratchFolder::ScratchFolder()
{
    std::random_device random;
    do
        m_path = fs::temp_directory_path() / ("renderengine-view-" + std::to_string(random()));
    while (!fs::create_directory(m_path));
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

ViewerRun runViewer(const ScratchFolder& folder, const std::vector<std::string>& arguments,
                    const std::vector<std::string>& wrapper)
{
    std::vector<std::string> command = wrapper;
    command.push_back(PROGRAM_FOLDER "/renderengine-view");
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runInFolder(folder, command);
}

ViewerRun runMany(const ScratchFolder& folder, const std::vector<std::string>& arguments)
{
    std::vector<std::string> command = {PROGRAM_FOLDER "/renderengine-many"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runInFolder(folder, command);
}

std::string testModel(const std::string& name)
{
    return std::string(ASSIMP_MODELS) + "/" + name;
}

std::size_t lineCount(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

void writeText(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

void expectRefused(const ScratchFolder& folder, const std::vector<std::string>& arguments, const std::string& reason)
{
    const ViewerRun run = runViewer(folder, arguments);
    EXPECT_EQ(run.exitCode, 1) << run.error;
    EXPECT_THAT(run.error, testing::HasSubstr(reason));
    EXPECT_EQ(lineCount(run.error), 1u) << run.error;
    EXPECT_TRUE(run.error.rfind("renderengine-view: ", 0) == 0) << run.error;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        EXPECT_FALSE(entry.path().extension() == ".png" || entry.path().extension() == ".part") << entry.path();
}

std::string nameOfModel(const testing::TestParamInfo<const char*>& model)
{
    std::string name = model.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}
