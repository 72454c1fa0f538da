#include "support/ProcessUsage.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace renderengine::testing
{

ProcessUsage readProcessUsage()
{
    ProcessUsage usage;
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
    {
        if (word == "RssAnon:")
        {
            std::size_t kibibytes = 0;
            status >> kibibytes;
            usage.memory = kibibytes * 1024;
        }
    }
    const std::filesystem::directory_iterator files("/proc/self/fd");
    usage.handles = static_cast<std::size_t>(std::distance(begin(files), end(files)));
    return usage;
}

} // namespace renderengine::testing
