#include "ViewerProgram.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

#include <sys/wait.h>

namespace fs = std::filesystem;

namespace
{

std::string readText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string quoted(const std::string& text)
{
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
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

ViewerRun runViewer(const ScratchFolder& folder, const std::vector<std::string>& arguments, const std::string& prefix)
{
    // The captured streams lie outside the folder, whose contents are the viewer's own.
    const fs::path out = folder.path().string() + ".out";
    const fs::path error = folder.path().string() + ".err";
    std::string command = "cd " + quoted(folder.path().string()) + " && " + prefix + quoted(VIEWER_PROGRAM);
    for (const std::string& argument : arguments)
        command += ' ' + quoted(argument);
    command += " >" + quoted(out.string()) + " 2>" + quoted(error.string());

    ViewerRun run;
    const int status = std::system(command.c_str());
    if (WIFEXITED(status) && WEXITSTATUS(status) < 128)
        run.exitCode = WEXITSTATUS(status);
    run.out = readText(out);
    run.error = readText(error);
    fs::remove(out);
    fs::remove(error);
    return run;
}

std::string testModel(const std::string& name)
{
    return std::string(ASSIMP_MODELS) + "/" + name;
}

std::size_t lineCount(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::string nameOfModel(const testing::TestParamInfo<const char*>& model)
{
    std::string name = model.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}
