// Runs a target on files, without libFuzzer: each file, and each file of each folder, named on the command line.

#include "Target.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace
{

namespace fs = std::filesystem;

std::vector<fs::path> filesOf(int count, char** arguments)
{
    std::vector<fs::path> files;
    for (int i = 1; i < count; ++i)
    {
        if (!fs::is_directory(arguments[i]))
        {
            files.emplace_back(arguments[i]);
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(arguments[i]))
        {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

int main(int count, char** arguments)
{
    const std::vector<fs::path> files = filesOf(count, arguments);
    for (const fs::path& path : files)
    {
        std::ifstream file(path, std::ios::binary);
        if (!file)
        {
            std::fprintf(stderr, "replay: %s cannot be read\n", path.string().c_str());
            return 1;
        }
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        const std::vector<uint8_t> input(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("replay: %zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}
